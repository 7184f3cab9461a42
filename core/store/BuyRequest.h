#pragma once

#include <memory>

#include <QObject>

#include "base/RivetCoreExport.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;
class QJsonObject;

/// Buys a prop with the user's money.
///
/// Main thread; the host owns it, and may delete it at any time, which ends a purchase in flight
/// silently: what the service has done by then shows after the next update. A purchase that
/// succeeds changes at once the money and VIP data of RivetUserProfile and the list of
/// MyPropListInfo.
class RIVETCORE_EXPORT BuyRequest : public QObject, public IHttpRequestSink
{
    Q_OBJECT
public:
    explicit BuyRequest(QObject *parent = nullptr);
    ~BuyRequest() override;

    /// Ends in requestFinished(), at latest after 15 s. @p normType and @p price are those of one
    /// of the prop's norms; the price is taken from the money here, the service knows its own. Does
    /// nothing while a purchase is in flight.
    void BuyProp(unsigned int bid, unsigned int propId, unsigned int normType, unsigned int price);

    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

Q_SIGNALS:
    void requestFinished(bool bSucceed);

private:
    bool parseData(const QJsonObject &json);
    void takeGoods(const QJsonObject &json) const;

    std::shared_ptr<HttpRequestTask> m_request;
    bool m_isBusy = false;
    quint32 m_price = 0;
};
