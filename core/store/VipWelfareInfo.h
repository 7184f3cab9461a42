#pragma once

#include <memory>

#include <QHash>
#include <QList>
#include <QObject>

#include "base/RivetCoreExport.h"
#include "support/coresupport/FilePersistent.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;
class QJsonObject;
template <typename Type>
class LazySingleton;

/// Something that a VIP gets. What the id stands for is between service and host.
struct VipWelfareItem
{
    qint32 id = 0;
    qint32 numbers = 0;
};

/// What one VIP level gives.
struct VipWelfare
{
    quint32 vipLevel = 0;
    double discount = 1.0; ///< by which prices are multiplied
    qint32 room = 5;
    QList<VipWelfareItem> welfareList;
    qint32 price = 0;
};

/// What each VIP level gives.
///
/// A singleton until the at-exit manager runs. Main thread only. It starts with what the cache file
/// holds, the service's last good answer, and goes back to that after an update that failed.
class RIVETCORE_EXPORT VipWelfareInfo : public QObject,
                                        public FilePersistent,
                                        public IHttpRequestSink
{
    Q_OBJECT
public:
    ~VipWelfareInfo() override;

    static VipWelfareInfo *GetInstance();

    /// True if the last update brought a good answer of the service; false while one is in flight.
    bool IsListUpdated() const { return m_isUpdated; }
    /// A default one for a level that is not known.
    VipWelfare GetVipWelfare(unsigned int vipLevel) const;

    /// Takes the table from an answer of the service. One that is refused leaves the table as it
    /// was; one with a wrong value leaves the levels before that.
    bool ParseData(const QByteArray &data) override;
    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

public Q_SLOTS:
    /// Asks the service, for at most 15 s, in the name of the logged-in user. No signal tells the
    /// end: see IsListUpdated(). Does nothing while an update is in flight.
    void UpdateList();

private:
    friend class LazySingleton<VipWelfareInfo>;
    VipWelfareInfo();

    bool m_isRequesting = false;
    bool m_isUpdated = false;
    std::shared_ptr<HttpRequestTask> m_request;
    QHash<quint32, VipWelfare> m_levels;
};
