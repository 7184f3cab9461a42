#include "support/coresupport/HttpRequestTask.h"

#include <utility>

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include "support/coresupport/ErrorReply.h"
#include "support/coresupport/IHttpRequestSink.h"
#include "support/coresupport/IHttpRequestSinkEx.h"

namespace {

QNetworkRequest makeRequest(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

/// True for a body that ended before its announced length. Qt 5 takes it for whole when the answer
/// had come before Qt noted that the request was sent.
bool isCutOff(const QNetworkReply &reply)
{
    bool isAnnounced = false;
    const qint64 length = reply.rawHeader("Content-Length").toLongLong(&isAnnounced);
    return isAnnounced && reply.error() == QNetworkReply::NoError &&
           reply.bytesAvailable() < length;
}

/// What the sink has to see in the place of @p reply; null when that is right as it is.
QNetworkReply *replacementFor(const QNetworkReply *reply, bool timedOut)
{
    if (!reply)
        return new ErrorReply(QNetworkReply::UnknownNetworkError,
                              QStringLiteral("no network access manager"), nullptr);
    if (timedOut)
        return new ErrorReply(QNetworkReply::TimeoutError, QStringLiteral("timed out"), reply);
    if (isCutOff(*reply))
        return new ErrorReply(QNetworkReply::RemoteHostClosedError,
                              QStringLiteral("the body was cut off"), reply);
    return nullptr;
}

} // namespace

HttpRequestTask::HttpRequestTask(const QString &url, IHttpRequestSink *sink, unsigned int timeoutMs,
                                 unsigned short requestId, QObject *parent)
    : QObject(parent),
      m_url(url, QUrl::TolerantMode),
      m_timeout(timeoutMs),
      m_requestId(requestId),
      m_sink(sink),
      m_timer(this)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HttpRequestTask::onTimeout);
}

HttpRequestTask::~HttpRequestTask()
{
    HttpRequestTask::Cancel();
}

void HttpRequestTask::SetSink(IHttpRequestSinkEx *sink)
{
    m_sinkEx = sink;
    m_sink = nullptr;
}

void HttpRequestTask::SetNetworkAccessManager(std::shared_ptr<QNetworkAccessManager> manager)
{
    m_manager = std::move(manager);
}

void HttpRequestTask::Cancel()
{
    m_isRunning = false;
    m_timer.stop();
    if (QNetworkReply *reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    m_managerInUse.reset();
}

void HttpRequestTask::Start()
{
    if (m_isRunning)
        return;
    m_isRunning = true;
    m_timedOut = false;
    ++m_run;
    m_managerInUse = m_manager;
    if (!m_managerInUse) {
        onReplyFinished();
        return;
    }
    m_reply = m_managerInUse->get(makeRequest(m_url));
    connect(m_reply, &QNetworkReply::finished, this, &HttpRequestTask::onReplyFinished);
    if (m_timeout.count() > 0)
        m_timer.start(m_timeout);
}

void HttpRequestTask::onTimeout()
{
    m_timedOut = true;
    if (m_reply)
        m_reply->abort();
}

// The report waits for the event loop: the sink may delete task and manager, and with them the
// reply, which would not survive that inside its own signal.
void HttpRequestTask::onReplyFinished()
{
    m_timer.stop();
    QMetaObject::invokeMethod(
        this, [this, run = m_run] { report(run); }, Qt::QueuedConnection);
}

void HttpRequestTask::report(quint64 run)
{
    if (!m_isRunning || run != m_run)
        return;
    m_isRunning = false;
    const std::shared_ptr<QNetworkAccessManager> manager = std::move(m_managerInUse);
    QNetworkReply *reply = std::exchange(m_reply, nullptr);
    QNetworkReply *replacement = replacementFor(reply, m_timedOut);
    for (QNetworkReply *used : {reply, replacement}) {
        if (used)
            used->deleteLater();
    }
    callSink(replacement ? replacement : reply);
}

/// The task may be gone afterwards.
void HttpRequestTask::callSink(QNetworkReply *reply)
{
    if (m_sinkEx) {
        const int error = reply->error();
        const QByteArray body = error == 0 ? reply->readAll() : QByteArray();
        m_sinkEx->httpRequestFinishedEx(m_requestId, error, body);
    } else if (m_sink) {
        m_sink->httpRequestFinished(m_requestId, reply);
    }
}
