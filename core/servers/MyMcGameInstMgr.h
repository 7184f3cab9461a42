#pragma once

#include <memory>

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

#include "base/RivetCoreExport.h"
#include "support/coresupport/FilePersistent.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;
template <typename Type>
class LazySingleton;

/// The game instances of the logged-in user's own server account.
///
/// A singleton until the at-exit manager runs, when it saves. Main thread only. It starts with what
/// the cache file holds. An instance that the service no longer lists stays until the process ends.
class RIVETCORE_EXPORT MyMcGameInstMgr : public QObject,
                                         public IHttpRequestSink,
                                         public FilePersistent
{
    Q_OBJECT
public:
    ~MyMcGameInstMgr() override;

    static MyMcGameInstMgr *GetInstance();

    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

    /// The ids of all instances, in no particular order.
    QList<unsigned int> getGameInstIdList() const;
    /// Those whose versions all lie in @p verSet (CCommonFunction::IsThisVerSetInOtherVerSet).
    QList<unsigned int> getGameInstIdList(const QString &verSet) const;
    /// Empty if the id is unknown.
    QString getGameInstName(unsigned int id) const;
    /// What the service says of the instance; empty if the id is unknown.
    QJsonObject getGameInstanceInfo(unsigned int id) const;

public Q_SLOTS:
    /// Asks the service for the list of the logged-in user and ends in updateFinished(), at latest
    /// after 20 s; a newer call takes the place of one in flight. Does nothing, not even that, but
    /// for a line on the log, while nobody is logged in.
    void updateList();

Q_SIGNALS:
    /// After a failure the list is as it was.
    void updateFinished(bool success);

protected:
    bool BuildData(QByteArray &out) override;
    /// Adds the instances of the service's answer or of the cache file.
    bool ParseData(const QByteArray &data) override;

private:
    friend class LazySingleton<MyMcGameInstMgr>;
    MyMcGameInstMgr();

    bool takeAnswer(QNetworkReply &reply);

    QHash<unsigned int, QJsonObject> m_instances;
    /// Those that the service has listed in this process.
    QSet<unsigned int> m_listed;
    std::shared_ptr<HttpRequestTask> m_request;
};
