#pragma once

#include <memory>

#include <QList>
#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"
#include "support/coresupport/FilePersistent.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;
class QJsonObject;
template <typename Type>
class LazySingleton;

/// One way in which a prop is sold.
struct StoreNorm
{
    qint32 type = 0;  ///< tells the ways of one prop apart
    qint32 price = 0; ///< in the user's money
    QString name;
    QString describe;
};

/// A prop that the store sells.
struct StoreProp
{
    /// What #toolType can say. Others are sold, too; nothing in the core acts on them.
    enum ToolType {
        Switched = 1,        ///< is switched on and off, and has an end time
        Consumable = 2,      ///< goes down by one with each use
        OtherConsumable = 3, ///< likewise
        Membership = 4,      ///< makes the user a VIP
    };

    quint32 id = 0; ///< 0: there is no such prop
    QString name;
    QString picture;
    qint32 toolType = 0;
    QList<StoreNorm> normList;
    QString detail;
    bool onSale = false;
    QString resUrl;
    QString reserved;    ///< the service does not fill it
    qint32 vipLevel = 0; ///< that a membership gives
};

/// The props that the store sells.
///
/// A singleton until the at-exit manager runs. Main thread only. It starts with what the cache file
/// holds, the service's last good answer, and goes back to that after an update that failed.
class RIVETCORE_EXPORT RivetStoreListInfo : public QObject,
                                            public FilePersistent,
                                            public IHttpRequestSink
{
    Q_OBJECT
public:
    ~RivetStoreListInfo() override;

    static RivetStoreListInfo *GetInstance();

    /// True if the last update brought a good answer of the service; false while one is in flight.
    bool IsListUpdated() const { return m_isUpdated; }
    /// In the order of the service.
    QList<StoreProp> getStorePropList() const { return m_props; }
    /// The first of that id; a default one if there is none.
    StoreProp getStoreProp(unsigned int id) const;
    /// That of the first norm of the type, among all props of the id; 0 if there is none.
    unsigned int GetPrice(unsigned int propId, unsigned int normType) const;

    /// Takes the list from an answer of the service. One that is refused leaves the list as it was;
    /// one with a wrong value leaves the props before that.
    bool ParseData(const QByteArray &data) override;
    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

public Q_SLOTS:
    /// Ends in updateStorePropListFinished(), at latest after 15 s. Does nothing while an update is
    /// in flight.
    void UpdateList();

Q_SIGNALS:
    void updateStorePropListFinished(bool bSucceed);

private:
    friend class LazySingleton<RivetStoreListInfo>;
    RivetStoreListInfo();

    void appendProp(const QJsonObject &json);

    bool m_isRequesting = false;
    bool m_isUpdated = false;
    std::shared_ptr<HttpRequestTask> m_request;
    QList<StoreProp> m_props;
};
