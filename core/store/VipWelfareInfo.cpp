#include "core/store/VipWelfareInfo.h"

#include <QDir>
#include <QNetworkReply>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/foundation/FSH.h"
#include "core/foundation/ServiceAnswer.h"
#include "core/foundation/ServiceRequest.h"
#include "core/store/StoreAnswer.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Json.h"

namespace {

void appendItem(QList<VipWelfareItem> &items, const QJsonObject &json)
{
    const QJsonValue idValue = json[QLatin1String("id")];
    const int id = Json::ensureString(idValue, QString(), QStringLiteral("wel_id")).toInt();
    if (id != 0)
        items += {id, ServiceAnswer::number(json, "numbers")};
}

VipWelfare levelIn(const QJsonObject &json)
{
    VipWelfare level;
    level.vipLevel = static_cast<quint32>(ServiceAnswer::number(json, "vipLevel"));
    level.discount = Json::requireString(json, "discount").toDouble();
    level.room = ServiceAnswer::number(json, "room");
    level.price = ServiceAnswer::number(json, "price");
    const QString welfare = QStringLiteral("welfare");
    ServiceAnswer::forEachObject(
        Json::requireArray(json[welfare], welfare), QStringLiteral("welfare_item"),
        [&level](const QJsonObject &item) { appendItem(level.welfareList, item); });
    return level;
}

} // namespace

VipWelfareInfo::VipWelfareInfo()
{
    FilePersistent::SetSavePathFile(FSH::localAppDataPath() % QDir::separator() %
                                    QLatin1String("vipwelfareinfo.cache"));
    FilePersistent::Load();
}

VipWelfareInfo::~VipWelfareInfo() = default;

VipWelfareInfo *VipWelfareInfo::GetInstance()
{
    return LazySingleton<VipWelfareInfo>::get();
}

void VipWelfareInfo::UpdateList()
{
    if (m_isRequesting)
        return;
    m_isRequesting = true;
    m_isUpdated = false;
    const quint32 bid = RivetUserProfile::GetInstance()->getBid();
    m_request = ServiceRequest::start(ServiceRequest::signedUrl(g_get_vip_welfare_url, bid), this);
}

void VipWelfareInfo::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (!reply)
        return;
    m_isUpdated = StoreAnswer::takeInto(*this, *reply,
                                        [this](const QByteArray &body) { return ParseData(body); });
    m_isRequesting = false;
}

bool VipWelfareInfo::ParseData(const QByteArray &data)
{
    const auto reader = [&] {
        const auto levels = StoreAnswer::listIn(data, QStringLiteral("vipList"));
        if (!levels)
            return false;
        m_levels.clear();
        ServiceAnswer::forEachObject(*levels, QStringLiteral("vip_welfare"),
                                     [this](const QJsonObject &json) {
                                         const VipWelfare level = levelIn(json);
                                         m_levels[level.vipLevel] = level;
                                     });
        return true;
    };
    return ServiceAnswer::read(
        {QLatin1String("parse vip welfare list failed, error: "),
         QLatin1String("throw unknown exception on parse vip welfare list!")},
        reader);
}

VipWelfare VipWelfareInfo::GetVipWelfare(unsigned int vipLevel) const
{
    return m_levels.value(vipLevel);
}
