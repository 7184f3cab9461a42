#pragma once

#include <memory>

#include <QJsonObject>
#include <QList>
#include <QObject>

#include "base/RivetCoreExport.h"

class QNetworkAccessManager;

/// The game clients that the service offers.
///
/// A singleton until the at-exit manager runs; main thread only. The list is fetched once; the last
/// good answer lies in "list.cache" of the download directory and serves where the service can't be
/// reached.
class RIVETCORE_EXPORT GameClientListInfo : public QObject
{
    Q_OBJECT
public:
    explicit GameClientListInfo(QObject *parent = nullptr);
    ~GameClientListInfo() override;

    static GameClientListInfo *GetInstance();

    /// Fetches the list, unless it is there. A call while a fetch runs sends a second request.
    void updateList();
    bool isListUpdated() const { return m_isUpdated; }

    /// All descriptions, in the order of the service.
    QList<QJsonObject> gameClients() const { return m_clients; }
    /// The description of a client as the service sent it; empty if it lists no such one.
    QJsonObject gameClientInfo(uint id) const;
    /// The first client whose "ver" is exactly @p version.
    QJsonObject gameClientInfo(const QString &version) const;

Q_SIGNALS:
    /// After each fetch; @p success tells whether there is a list now.
    void updateListFinished(bool success);

protected Q_SLOTS:
    void onNetGetListFinished();

protected:
    bool parseListInfo(const QJsonObject &answer);

private:
    bool m_isUpdated = false;
    std::shared_ptr<QNetworkAccessManager> m_manager;
    QList<QJsonObject> m_clients; ///< in the order of the service
};
