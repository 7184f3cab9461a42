#include "core/store/MyPropListInfo.h"

#include <algorithm>
#include <optional>

#include <QNetworkReply>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/foundation/ServiceAnswer.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace {

MyProp propIn(const QJsonObject &json)
{
    constexpr int yes = 2;
    MyProp prop;
    const QString id = Json::requireString(json[QLatin1String("toolsId")], QStringLiteral("id"));
    prop.id = static_cast<quint32>(id.toInt());
    prop.count = static_cast<quint32>(ServiceAnswer::number(json, "count"));
    if (!json[QLatin1String("endTime")].isNull())
        prop.endTime = ServiceAnswer::time(json, "endTime");
    prop.isUsing = ServiceAnswer::number(json, "isUsing") == yes;
    prop.isExpire = ServiceAnswer::number(json, "isExpire") == yes;
    return prop;
}

/// Copies what the store says of the prop; false if it does not know the prop.
bool copyFromStore(MyProp &prop, unsigned int id)
{
    const StoreProp known = RivetStoreListInfo::GetInstance()->getStoreProp(id);
    if (known.id == 0)
        return false;
    static_cast<StoreProp &>(prop) = known;
    return true;
}

} // namespace

MyPropListInfo::MyPropListInfo() = default;

MyPropListInfo::~MyPropListInfo() = default;

MyPropListInfo *MyPropListInfo::GetInstance()
{
    return LazySingleton<MyPropListInfo>::get();
}

void MyPropListInfo::UpdateList()
{
    if (m_isRequesting)
        return;
    m_props.clear();
    m_isUpdated = false;
    m_isRequesting = true;
    const QString bid = QString::number(RivetUserProfile::GetInstance()->getBid());
    m_request =
        ServiceRequest::start(QString::fromLatin1(g_store_get_my_proplist_url).arg(bid), this);
}

void MyPropListInfo::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (!reply)
        return;
    const std::optional<QJsonObject> answer = ServiceAnswer::objectOf(*reply);
    m_isUpdated = answer && parseMyPropList(*answer);
    if (m_isUpdated)
        refrushPropInfo();
    else if (answer)
        Log::warning(QStringLiteral("parse store list info failed"));
    m_isRequesting = false;
    Q_EMIT updateMyPropListFinished(m_isUpdated);
}

bool MyPropListInfo::parseMyPropList(const QJsonObject &json)
{
    const auto reader = [&] {
        constexpr int nothingToShow = -1;
        const int code = ServiceAnswer::code(json);
        if (code == nothingToShow)
            return true;
        if (code != 0) {
            Log::warning(QLatin1String("request my prop list failed, code: ") %
                         QString::number(code));
            return false;
        }
        m_props.clear();
        ServiceAnswer::forEachObject(
            Json::requireArray(json[QLatin1String("data")], QStringLiteral("propList")),
            QStringLiteral("prop"), [this](const QJsonObject &prop) { m_props += propIn(prop); });
        return true;
    };
    return ServiceAnswer::read({QLatin1String("parse my store list failed, error: "),
                                QLatin1String("throw unknown exception on parse my store list!")},
                               reader);
}

void MyPropListInfo::refrushPropInfo()
{
    for (MyProp &prop : m_props)
        copyFromStore(prop, prop.id);
}

int MyPropListInfo::indexOf(unsigned int id) const
{
    const auto found = std::find_if(m_props.begin(), m_props.end(),
                                    [id](const MyProp &prop) { return prop.id == id; });
    return found == m_props.end() ? -1 : int(found - m_props.begin());
}

MyProp MyPropListInfo::GetMyPropById(unsigned int id) const
{
    return m_props.value(indexOf(id));
}

unsigned int MyPropListInfo::GetPropCountByPropId(unsigned int id) const
{
    return GetMyPropById(id).count;
}

bool MyPropListInfo::HasProp(unsigned int id) const
{
    return indexOf(id) >= 0;
}

void MyPropListInfo::UpdateMyPorpInfo(unsigned int propId, unsigned int count, unsigned int endTime)
{
    if (!HasProp(propId)) {
        MyProp bought;
        // One that the store does not know keeps its own id, so that it can be found again.
        if (!copyFromStore(bought, propId))
            bought.id = propId;
        m_props += bought;
    }
    MyProp &prop = m_props[indexOf(propId)];
    prop.count = count;
    prop.endTime = endTime;
    prop.isExpire = false;
}

void MyPropListInfo::ChangePropUserStatus(unsigned int propId, bool use)
{
    switch (RivetStoreListInfo::GetInstance()->getStoreProp(propId).toolType) {
    case StoreProp::Switched:
        switchProp(propId, use);
        break;
    case StoreProp::Consumable:
    case StoreProp::OtherConsumable:
        consumeProp(propId);
        break;
    default:
        break;
    }
}

void MyPropListInfo::switchProp(unsigned int propId, bool use)
{
    std::optional<qint32> toolType;
    for (MyProp &prop : m_props) {
        if (prop.id == propId) {
            prop.isUsing = use;
            toolType = prop.toolType;
        }
    }
    if (!use || !toolType)
        return;
    for (MyProp &prop : m_props) {
        if (prop.id != propId && prop.toolType == *toolType)
            prop.isUsing = false;
    }
}

void MyPropListInfo::consumeProp(unsigned int propId)
{
    const int index = indexOf(propId);
    if (index < 0)
        return;
    if (m_props[index].count > 1)
        --m_props[index].count;
    else
        m_props.removeAt(index);
}
