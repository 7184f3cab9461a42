#pragma once

#include <memory>

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"
#include "support/coresupport/FilePersistent.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;

/// One address under which a server can be reached.
struct tagOnlineSrvAddr
{
    QString host;
    unsigned short port = 0;
};

/// A public server for online play.
struct tagOnlineSrvInfo
{
    int id = 0;
    QString name;
    QString ver; ///< also the name under which OnlineMapResConfig keeps its default resources
    QList<tagOnlineSrvAddr> addresses;
    /// The pairs behind "saves" in the server's resources; what they mean is between service and
    /// host.
    QMap<unsigned int, QList<unsigned int>> saves;
};

/// The list of public servers, fetched once, with its last good answer on disk for the times
/// without a network. It sets the server's defaults in OnlineMapResConfig.
///
/// Main thread. Its owner may delete it at any time, which ends a request in flight silently.
class RIVETCORE_EXPORT OnlineSrvInfoReq : public QObject,
                                          public IHttpRequestSink,
                                          public FilePersistent
{
    Q_OBJECT
public:
    explicit OnlineSrvInfoReq(QObject *parent = nullptr);
    ~OnlineSrvInfoReq() override;

    /// Ends in requestFinished(), at latest after 15 s. Does nothing while a request is in flight,
    /// nor after a good answer.
    void startRequest();
    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

    /// True after a good answer of the service; what comes from the disk does not count.
    bool isUpdated() const { return m_isUpdated; }
    QList<tagOnlineSrvInfo> &getOnlineSrvInfoList() { return m_servers; }
    /// What the service says of a usable server, also of one without addresses, which the list
    /// leaves out; empty if the id is unknown.
    QJsonObject getSrvObject(unsigned int id) const;

Q_SIGNALS:
    /// @p bSuccess is isUpdated(). The list may be filled without it.
    void requestFinished(bool bSuccess);

protected:
    /// Replaces the list by what the answer of the service or its copy on disk tells. After a
    /// failure in the middle it holds what stood before that.
    bool ParseData(const QByteArray &data) override;

private:
    void takeReply(QNetworkReply &reply);
    bool parseAnswer(const QJsonObject &answer);
    bool parseServer(const QJsonObject &server);
    bool parseAddressInfo(const QJsonObject &server, tagOnlineSrvInfo &info);
    bool parseSavesInfo(const QJsonObject &server, tagOnlineSrvInfo &info);

    std::shared_ptr<HttpRequestTask> m_request;
    QList<tagOnlineSrvInfo> m_servers;
    QHash<unsigned int, QJsonObject> m_serverObjects;
    bool m_isUpdated = false;
    bool m_isRequesting = false;
};
