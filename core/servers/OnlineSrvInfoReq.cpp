#include "core/servers/OnlineSrvInfoReq.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <QSet>
#include <QStringBuilder>
#include <QStringList>

#include "core/config/OnlineMapResConfig.h"
#include "core/foundation/CachedAnswer.h"
#include "core/foundation/FSH.h"
#include "core/foundation/ResourceKey.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/GlobalDebugOptions.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace {

/// Runs @p read; false, with @p line on the log, if it can't read.
template <typename Reader>
bool reads(const char *line, const Reader &read)
{
    try {
        return read();
    } catch (const Exception &exception) {
        Log::critical(QLatin1String(line) % exception.cause());
    } catch (...) {
        Log::warning(QStringLiteral("other error!"));
    }
    return false;
}

bool isWord(const QString &token, const char *word)
{
    return token.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

/// The pairs "<key>-<value>" behind the word "saves".
QMap<unsigned int, QList<unsigned int>> savesIn(const QStringList &tokens)
{
    QMap<unsigned int, QList<unsigned int>> saves;
    bool isInSection = false;
    for (const QString &token : tokens) {
        isInSection = isInSection || isWord(token, "saves");
        const QStringList pair = token.split(QLatin1Char('-'));
        if (isInSection && pair.size() == 2)
            saves[pair[0].toUInt()] += pair[1].toUInt();
    }
    return saves;
}

/// The keys of the mods whose ids stand between the word "mods" and the word "saves".
QSet<quint64> modsIn(const QStringList &tokens)
{
    QSet<quint64> keys;
    bool isInSection = false;
    for (const QString &token : tokens) {
        isInSection = isWord(token, "mods") || (isInSection && !isWord(token, "saves"));
        const quint32 id = isInSection ? token.toUInt() : 0;
        if (id != 0)
            keys += ResourceKey::pack(id, ResTypeMods);
    }
    return keys;
}

} // namespace

OnlineSrvInfoReq::OnlineSrvInfoReq(QObject *parent) : QObject(parent)
{
    FilePersistent::SetSavePathFile(FSH::localAppDataPath() %
                                    QLatin1String("/LANServerlist.cache"));
}

OnlineSrvInfoReq::~OnlineSrvInfoReq() = default;

void OnlineSrvInfoReq::startRequest()
{
    if (m_isUpdated || m_isRequesting)
        return;
    m_isRequesting = true;
    m_request = ServiceRequest::start(QString::fromLatin1(g_lan_server_list_url), this);
}

void OnlineSrvInfoReq::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (reply) {
        m_isRequesting = false;
        takeReply(*reply);
    }
    Q_EMIT requestFinished(m_isUpdated);
}

void OnlineSrvInfoReq::takeReply(QNetworkReply &reply)
{
    if (reply.error() != QNetworkReply::NoError) {
        Log::warning(QLatin1String("failed with errno ") % QString::number(reply.error()));
        Load();
        return;
    }
    const QByteArray body = CachedAnswer::filteredBody(reply);
    if (ParseData(body)) {
        m_isUpdated = true;
        Save(body);
    } else {
        Log::warning(QStringLiteral("parse online address failed"));
        Load();
    }
}

bool OnlineSrvInfoReq::ParseData(const QByteArray &data)
{
    return reads("parse online server address failed.",
                 [&] { return parseAnswer(QJsonDocument::fromJson(data).object()); });
}

bool OnlineSrvInfoReq::parseAnswer(const QJsonObject &answer)
{
    constexpr int codeBits = 0xffff;
    if (Json::requireInteger(answer[QLatin1String("code")], QStringLiteral("code")) & codeBits)
        return false;
    const QJsonArray servers =
        Json::requireArray(answer[QLatin1String("server")], QStringLiteral("server"));
    if (servers.isEmpty()) {
        Log::critical(QStringLiteral("server array is empty"));
        return false;
    }
    m_servers.clear();
    m_serverObjects.clear();
    for (const QJsonValue &server : servers) {
        if (!parseServer(Json::requireObject(server, QStringLiteral("online Server"))))
            return false;
    }
    return true;
}

/// Also true for a server that is passed over.
bool OnlineSrvInfoReq::parseServer(const QJsonObject &server)
{
    if (server.isEmpty())
        return true;
    const bool isUsable = Json::requireString(server, "status").toInt() == 0;
    if (!isUsable && !g_GlobalDebugOptions.onlineAddressFilter)
        return true;

    tagOnlineSrvInfo info;
    info.id = Json::requireString(server, "id").toInt();
    info.name = Json::requireString(server, "name");
    info.ver = Json::requireString(server, "ver");
    m_serverObjects[static_cast<unsigned int>(info.id)] = server;
    const QString address = QStringLiteral("address");
    if (Json::requireObject(server[address], address).isEmpty())
        return true;
    if (!parseAddressInfo(server, info)) {
        Log::critical(QStringLiteral("parse address failed"));
        return false;
    }
    if (!parseSavesInfo(server, info)) {
        Log::critical(QStringLiteral("parse saves failed"));
        return false;
    }
    m_servers += info;
    return true;
}

bool OnlineSrvInfoReq::parseAddressInfo(const QJsonObject &server, tagOnlineSrvInfo &info)
{
    return reads("parse online server address failed.", [&] {
        info.addresses.clear();
        const QJsonObject addresses = server[QLatin1String("address")].toObject();
        for (const QJsonValue &value : addresses) {
            const QString text = Json::requireString(value, QStringLiteral("address"));
            if (text.isEmpty())
                continue;
            const QStringList parts = text.split(QLatin1Char(':'), Qt::SkipEmptyParts);
            if (parts.size() != 2) {
                Log::critical(QStringLiteral("address format is incorrect"));
                return false;
            }
            info.addresses += {parts[0], static_cast<unsigned short>(parts[1].toInt())};
        }
        if (info.addresses.isEmpty())
            Log::critical(QStringLiteral("can not get address"));
        return !info.addresses.isEmpty();
    });
}

bool OnlineSrvInfoReq::parseSavesInfo(const QJsonObject &server, tagOnlineSrvInfo &info)
{
    return reads("parse online saves failed.", [&] {
        info.saves.clear();
        const QStringList tokens = Json::requireString(server, "mods").split(QLatin1Char(';'));
        info.saves = savesIn(tokens);
        if (!info.ver.isEmpty())
            OnlineMapResConfig::GetInstance()->SetSrvDefaultResConfig(info.ver, modsIn(tokens));
        return true;
    });
}

QJsonObject OnlineSrvInfoReq::getSrvObject(unsigned int id) const
{
    return m_serverObjects.value(id);
}
