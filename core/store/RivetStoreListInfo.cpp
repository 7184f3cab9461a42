#include "core/store/RivetStoreListInfo.h"

#include <algorithm>

#include <QDir>
#include <QNetworkReply>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/foundation/FSH.h"
#include "core/foundation/ServiceAnswer.h"
#include "core/foundation/ServiceRequest.h"
#include "core/store/StoreAnswer.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Json.h"

namespace {

using Json::requireString;
using ServiceAnswer::number;

/// All that is read before the sales forms.
StoreProp propIn(const QJsonObject &json)
{
    constexpr int soldOut = 1;
    StoreProp prop;
    prop.id = static_cast<quint32>(number(json, "id"));
    prop.name = requireString(json, "name");
    prop.toolType = number(json, "toolType");
    prop.picture = requireString(json, "picture");
    prop.onSale = number(json, "soldOut") != soldOut;
    prop.resUrl = requireString(json, "resUrl");
    const QString detail = QStringLiteral("detail");
    prop.detail = Json::ensureString(json[detail], QString(), detail);
    return prop;
}

StoreNorm normIn(const QJsonObject &json, qint32 toolType)
{
    StoreNorm norm;
    norm.type = number(json, "type");
    norm.price = number(json, "price");
    norm.name = requireString(json, "name");
    norm.describe = requireString(json, "describe");
    // The service counts these by the wrong word.
    if (toolType == StoreProp::Consumable)
        norm.name.replace(QStringLiteral("张"), QStringLiteral("个"));
    return norm;
}

} // namespace

RivetStoreListInfo::RivetStoreListInfo()
{
    FilePersistent::SetSavePathFile(FSH::localAppDataPath() % QDir::separator() %
                                    QLatin1String("rivetStoreList.cache"));
    FilePersistent::Load();
}

RivetStoreListInfo::~RivetStoreListInfo() = default;

RivetStoreListInfo *RivetStoreListInfo::GetInstance()
{
    return LazySingleton<RivetStoreListInfo>::get();
}

void RivetStoreListInfo::UpdateList()
{
    if (m_isRequesting)
        return;
    m_isRequesting = true;
    m_isUpdated = false;
    constexpr int firstPage = 1;
    constexpr int pageSize = 90;
    const QString url =
        QString::fromLatin1(g_store_get_store_proplist_url).arg(firstPage).arg(pageSize);
    m_request = ServiceRequest::start(url, this);
}

void RivetStoreListInfo::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (!reply)
        return;
    m_isUpdated = StoreAnswer::takeInto(*this, *reply,
                                        [this](const QByteArray &body) { return ParseData(body); });
    m_isRequesting = false;
    Q_EMIT updateStorePropListFinished(m_isUpdated);
}

bool RivetStoreListInfo::ParseData(const QByteArray &data)
{
    const auto reader = [&] {
        const auto props = StoreAnswer::listIn(data, QStringLiteral("propList"));
        if (!props)
            return false;
        m_props.clear();
        ServiceAnswer::forEachObject(*props, QStringLiteral("prop"),
                                     [this](const QJsonObject &json) { appendProp(json); });
        return true;
    };
    return ServiceAnswer::read({QLatin1String("parse store list failed, error: "),
                                QLatin1String("throw unknown exception on parse store list!")},
                               reader);
}

void RivetStoreListInfo::appendProp(const QJsonObject &json)
{
    StoreProp prop = propIn(json);
    const QJsonValue norms = json[QLatin1String("normList")];
    if (!norms.isArray())
        return;
    ServiceAnswer::forEachObject(
        norms.toArray(), QStringLiteral("norm"),
        [&prop](const QJsonObject &norm) { prop.normList += normIn(norm, prop.toolType); });
    const QString vipLevel = QStringLiteral("vipLevel");
    if (prop.toolType == StoreProp::Membership)
        prop.vipLevel = Json::ensureInteger(json[vipLevel], 0, vipLevel);
    m_props += prop;
}

StoreProp RivetStoreListInfo::getStoreProp(unsigned int id) const
{
    const auto found = std::find_if(m_props.begin(), m_props.end(),
                                    [id](const StoreProp &prop) { return prop.id == id; });
    return found == m_props.end() ? StoreProp() : *found;
}

unsigned int RivetStoreListInfo::GetPrice(unsigned int propId, unsigned int normType) const
{
    for (const StoreProp &prop : m_props) {
        if (prop.id != propId)
            continue;
        for (const StoreNorm &norm : prop.normList) {
            if (static_cast<unsigned int>(norm.type) == normType)
                return static_cast<unsigned int>(norm.price);
        }
    }
    return 0;
}
