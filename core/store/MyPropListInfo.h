#pragma once

#include <memory>

#include <QList>
#include <QObject>

#include "base/RivetCoreExport.h"
#include "core/store/RivetStoreListInfo.h"
#include "support/coresupport/IHttpRequestSink.h"

/// A prop that the user owns: that of the store, and his own numbers.
struct MyProp : StoreProp
{
    quint32 count = 0;
    quint32 endTime = 0; ///< seconds since the epoch; 0: it has no end
    bool isUsing = false;
    bool isExpire = true;
};

/// The props that the logged-in user owns.
///
/// A singleton until the at-exit manager runs. Main thread only. Fetched from the service, and kept
/// up to date as purchases and uses succeed; not kept on disk.
class RIVETCORE_EXPORT MyPropListInfo : public QObject, public IHttpRequestSink
{
    Q_OBJECT
public:
    ~MyPropListInfo() override;

    static MyPropListInfo *GetInstance();

    /// True if the last update ended well; false while one is in flight.
    bool IsListUpdated() const { return m_isUpdated; }
    QList<MyProp> GetMyPropList() const { return m_props; }
    /// The first of that id; a default one if there is none.
    MyProp GetMyPropById(unsigned int id) const;
    unsigned int GetPropCountByPropId(unsigned int id) const;
    /// Whatever its count and its end.
    bool HasProp(unsigned int id) const;

    /// After a purchase: @p count is the new total. Adds the prop if the user did not own it.
    void UpdateMyPorpInfo(unsigned int propId, unsigned int count, unsigned int endTime);
    /// After a use. One switched prop is on at a time; a consumable goes down by one, and goes with
    /// the last one, whatever @p use says. Does nothing for a prop that the store does not know.
    void ChangePropUserStatus(unsigned int propId, bool use);

    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

public Q_SLOTS:
    /// Empties the list and asks the service. Ends in updateMyPropListFinished(), at latest after
    /// 15 s. Does nothing while an update is in flight.
    void UpdateList();

Q_SIGNALS:
    void updateMyPropListFinished(bool bSucceed);

private:
    friend class LazySingleton<MyPropListInfo>;
    MyPropListInfo();

    bool parseMyPropList(const QJsonObject &json);
    void refrushPropInfo();
    void switchProp(unsigned int propId, bool use);
    void consumeProp(unsigned int propId);
    int indexOf(unsigned int id) const; ///< of the first; -1 if there is none

    bool m_isUpdated = false;
    bool m_isRequesting = false;
    std::shared_ptr<HttpRequestTask> m_request;
    QList<MyProp> m_props;
};
