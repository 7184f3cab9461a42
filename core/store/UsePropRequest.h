#pragma once

#include <memory>

#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"
#include "support/coresupport/IHttpRequestSink.h"

class HttpRequestTask;
class QJsonObject;

/// Switches a prop of the logged-in user on or off, or uses one up.
///
/// Main thread; the host owns it, and may delete it at any time, which ends a use in flight
/// silently. A use that succeeds changes the list of MyPropListInfo at once.
class RIVETCORE_EXPORT UsePropRequest : public QObject, public IHttpRequestSink
{
    Q_OBJECT
public:
    explicit UsePropRequest(QObject *parent = nullptr);
    ~UsePropRequest() override;

    /// Ends in requestFinished(), at latest after 15 s. @p extra only goes to the service. Does
    /// nothing while a use is in flight.
    void UseProp(unsigned int propId, bool use, unsigned int extra);

    void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) override;

Q_SIGNALS:
    /// The text is always empty; the reason is on the log.
    void requestFinished(bool bSucceed, QString strErrMsg = QString());

private:
    bool parseData(const QJsonObject &json);

    std::shared_ptr<HttpRequestTask> m_request;
    bool m_isBusy = false;
    quint32 m_propId = 0;
    bool m_use = false;
};
