#include "core/accounts/QueryUserInfo.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <QStringBuilder>

#include "core/foundation/CachedAnswer.h"
#include "core/foundation/JsonNumber.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace {

// The service writes all numbers as texts.
void readInto(RivetUserInfo &info, const QJsonObject &json)
{
    info.userId = static_cast<quint32>(Json::requireString(json, "bid").toInt());
    info.money = static_cast<quint32>(Json::requireString(json, "money").toInt());
    info.vipLevel = static_cast<quint16>(Json::requireString(json, "VIPlevel").toInt());
    info.vipDaysLeft = Json::requireString(json, "deadLine").toInt();
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
    const ServiceRequest::SignedQuery query = ServiceRequest::signedQuery(bid);
    const QString url = QString::fromLatin1(g_view_user_info_url)
                            .arg(QString::number(bid), query.random, query.time, query.signature);
    m_request = ServiceRequest::start(url, this);
}

void QueryUserInfo::httpRequestFinished(quint16, QNetworkReply *reply)
{
    if (!reply) {
        Log::warning(QStringLiteral("net reply work object is null!"));
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        Log::warning(QLatin1String("request store list info failed, error code:") %
                     QString::number(reply->error()));
        Q_EMIT queryFinished(false);
        return;
    }
    const QByteArray body = CachedAnswer::filteredBody(*reply);
    const bool isRead = parseUserInfo(QJsonDocument::fromJson(body).object());
    if (!isRead)
        Log::warning(QStringLiteral("parse user info failed!"));
    Q_EMIT queryFinished(isRead);
}

bool QueryUserInfo::parseUserInfo(const QJsonObject &json)
{
    constexpr int nothingToReport = -1;
    try {
        const int code = Json::requireInteger(json[QLatin1String("code")], QStringLiteral("value"));
        if (code == 0) {
            readInto(m_info, json);
            return true;
        }
        Log::warning(Json::requireString(json[QLatin1String("msg")], QStringLiteral("error msg")));
        return code == nothingToReport;
    } catch (const Exception &exception) {
        Log::warning(QLatin1String("parse value error: ") % exception.cause());
    } catch (...) {
        Log::warning(QStringLiteral("parse user info throw an unknown exception !"));
    }
    return false;
}
