#pragma once

#include <chrono>
#include <memory>

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include "support/coresupport/CoreSupportExport.h"
#include "support/coresupport/IHttpRequestTask.h"

class IHttpRequestSink;
class QNetworkReply;

/// One HTTP GET, reported to one sink.
///
/// Lives on the thread that made it, whose event loop has to run; its owner deletes it, and doing
/// so in flight ends the request silently. A started request calls its sink exactly once, from the
/// event loop and never from within Start(); the sink may delete the task in that call. After the
/// report it may be started again.
///
/// A body arrives whole or the reply shows an error: one that ends before its announced length is a
/// RemoteHostClosedError, without a body, although Qt takes some of those for whole ones. No
/// compressed transfer is asked for, because there Qt loses sight of the length. Redirects are
/// followed unless they lower the security of the scheme. Certificate errors are the business of
/// the manager's owner.
class CORESUPPORT_EXPORT HttpRequestTask : public QObject, public IHttpRequestTask
{
    Q_OBJECT
public:
    /// @p url is parsed tolerantly; an invalid one is reported as an error. @p sink is not owned
    /// and may be null. @p timeoutMs covers the whole exchange, redirects and body included; 0 is
    /// no time-out. When it passes, the error is TimeoutError. @p requestId comes back in the
    /// report.
    HttpRequestTask(const QString &url, IHttpRequestSink *sink, unsigned int timeoutMs,
                    unsigned short requestId, QObject *parent);
    ~HttpRequestTask() override;

    /// Also takes the place of the sink given to the constructor.
    void SetSink(IHttpRequestSinkEx *sink) override;
    /// Shared; a request in flight keeps the one that it was started with. Without a manager the
    /// request ends in UnknownNetworkError.
    void SetNetworkAccessManager(std::shared_ptr<QNetworkAccessManager> manager) override;
    void Cancel() override;
    /// Does nothing while a request is in flight.
    void Start() override;

private:
    void onTimeout();
    void onReplyFinished();
    void report(quint64 run);
    void callSink(QNetworkReply *reply);

    const QUrl m_url;
    const std::chrono::milliseconds m_timeout;
    const unsigned short m_requestId;
    IHttpRequestSink *m_sink;
    IHttpRequestSinkEx *m_sinkEx = nullptr;
    std::shared_ptr<QNetworkAccessManager> m_manager;
    std::shared_ptr<QNetworkAccessManager> m_managerInUse; ///< outlives m_reply, which it owns
    QPointer<QNetworkReply> m_reply;
    QTimer m_timer;
    quint64 m_run = 0; ///< tells a report that is on its way from one that was cancelled
    bool m_isRunning = false;
    bool m_timedOut = false;
};
