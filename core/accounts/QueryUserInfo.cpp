#include "core/accounts/QueryUserInfo.h"

#include <QNetworkReply>

#include "core/foundation/JsonNumber.h"
#include "core/foundation/ServiceAnswer.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace {

using ServiceAnswer::number;

void readInto(RivetUserInfo &info, const QJsonObject &json)
{
    info.userId = static_cast<quint32>(number(json, "bid"));
    info.money = static_cast<quint32>(number(json, "money"));
    info.vipLevel = static_cast<quint16>(number(json, "VIPlevel"));
    info.vipDaysLeft = number(json, "deadLine");
    info.vipEndTime = static_cast<quint32>(
        JsonNumber::wholePart(Json::requireString(json, "endTime").toDouble()));
}

} // namespace

QueryUserInfo::QueryUserInfo(QObject *parent) : QObject(parent) {}

QueryUserInfo::~QueryUserInfo() = default;

void QueryUserInfo::QueryUser(quint32 bid)
{
    m_bid = bid;
    m_info = RivetUserInfo();
    m_request = ServiceRequest::start(ServiceRequest::signedUrl(g_view_user_info_url, bid), this);
}

void QueryUserInfo::httpRequestFinished(quint16, QNetworkReply *reply)
{
    if (!reply) {
        Log::warning(QStringLiteral("net reply work object is null!"));
        return;
    }
    const std::optional<QJsonObject> answer = ServiceAnswer::objectOf(*reply);
    const bool isRead = answer && parseUserInfo(*answer);
    if (answer && !isRead)
        Log::warning(QStringLiteral("parse user info failed!"));
    Q_EMIT queryFinished(isRead);
}

bool QueryUserInfo::parseUserInfo(const QJsonObject &json)
{
    constexpr int nothingToReport = -1;
    const auto reader = [&] {
        const int code = Json::requireInteger(json[QLatin1String("code")], QStringLiteral("value"));
        if (code == 0) {
            readInto(m_info, json);
            return true;
        }
        Log::warning(Json::requireString(json[QLatin1String("msg")], QStringLiteral("error msg")));
        return code == nothingToReport;
    };
    return ServiceAnswer::read({QLatin1String("parse value error: "),
                                QLatin1String("parse user info throw an unknown exception !")},
                               reader);
}
