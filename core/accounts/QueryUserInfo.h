#pragma once

#include <memory>

#include <QObject>

#include "base/RivetCoreExport.h"
#include "core/accounts/RivetUserInfo.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;
class QJsonObject;

/// Asks the user-info service for money and VIP data of one account.
///
/// Main thread; its parent owns it. Each query ends in queryFinished(), at latest after 15 s; a
/// newer query and the destructor end one in flight silently.
class RIVETCORE_EXPORT QueryUserInfo : public QObject, public IHttpRequestSink
{
    Q_OBJECT
public:
    explicit QueryUserInfo(QObject *parent = nullptr);
    ~QueryUserInfo() override;

    void QueryUser(quint32 bid);
    void httpRequestFinished(quint16 id, QNetworkReply *reply) override;

    /// What the last query brought; the defaults if the service had nothing to report.
    RivetUserInfo GetQueryUserInfo() const { return m_info; }
    /// The account that was asked for.
    quint32 bid() const { return m_bid; }

Q_SIGNALS:
    void queryFinished(bool bSucceed);

private:
    bool parseUserInfo(const QJsonObject &json);

    std::shared_ptr<HttpRequestTask> m_request;
    quint32 m_bid = 0;
    RivetUserInfo m_info;
};
