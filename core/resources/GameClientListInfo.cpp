#include "core/resources/GameClientListInfo.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

#include "base/LazySingleton.h"
#include "core/foundation/Environment.h"
#include "core/resources/RecordList.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Log.h"

GameClientListInfo::GameClientListInfo(QObject *parent)
    : QObject(parent), m_manager(Environment::GetInstance()->getShareNetworkAccessMgr())
{
}

GameClientListInfo::~GameClientListInfo() = default;

GameClientListInfo *GameClientListInfo::GetInstance()
{
    return LazySingleton<GameClientListInfo>::get();
}

void GameClientListInfo::updateList()
{
    if (m_isUpdated)
        return;
    QNetworkReply *reply =
        m_manager->get(QNetworkRequest(QUrl(QString::fromUtf8(g_client_list_url))));
    connect(reply, &QNetworkReply::finished, this, &GameClientListInfo::onNetGetListFinished);
    // A list that goes ends its requests.
    connect(this, &QObject::destroyed, reply, &QObject::deleteLater);
}

void GameClientListInfo::onNetGetListFinished()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply) {
        Log::critical(QStringLiteral("reply pointer is null."));
    } else {
        const CachedAnswer::Kind kind{QStringLiteral("parseGameListInfo faied. json:"),
                                      QStringLiteral("netgetgamelistinfo failed with errno "),
                                      RecordList::cacheFile(ResTypeGame),
                                      CachedAnswer::Form::BinaryJson};
        if (RecordList::take(*reply, kind, m_clients,
                             [this](const QJsonObject &answer) { return parseListInfo(answer); }))
            m_isUpdated = true;
        reply->deleteLater();
    }
    Q_EMIT updateListFinished(m_isUpdated);
}

bool GameClientListInfo::parseListInfo(const QJsonObject &answer)
{
    return RecordList::append(answer, answer[QLatin1String("game")], m_clients);
}

QJsonObject GameClientListInfo::gameClientInfo(uint id) const
{
    return RecordList::byId(m_clients, id);
}

QJsonObject GameClientListInfo::gameClientInfo(const QString &version) const
{
    return RecordList::firstOf(m_clients, [&](const QJsonObject &client) {
        return client[QLatin1String("ver")].toString() == version;
    });
}
