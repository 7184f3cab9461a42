#include "core/foundation/ServiceRequest.h"

#include <limits>

#include <QCryptographicHash>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>
#include <QStringBuilder>

#include "core/foundation/Environment.h"
#include "support/coresupport/HttpRequestTask.h"

namespace ServiceRequest {

SignedQuery signedQuery(quint32 bid)
{
    const int random = QRandomGenerator::global()->bounded(std::numeric_limits<int>::max());
    SignedQuery query{
        QString::number(random), QString::number(QDateTime::currentSecsSinceEpoch()), {}};
    const QString signedText =
        QLatin1String("Q7K3XeLpmmTzb5") % QString::number(bid) % query.random % query.time;
    query.signature = QString::fromLatin1(
        QCryptographicHash::hash(signedText.toUtf8(), QCryptographicHash::Sha1).toHex());
    return query;
}

QString signedUrl(const char *format, quint32 bid)
{
    const SignedQuery query = signedQuery(bid);
    return QString::fromLatin1(format).arg(QString::number(bid), query.random, query.time,
                                           query.signature);
}

std::shared_ptr<HttpRequestTask> start(const QString &url, IHttpRequestSink *sink,
                                       std::chrono::milliseconds timeout)
{
    const auto timeoutMs = static_cast<unsigned int>(timeout.count());
    auto task = std::make_shared<HttpRequestTask>(url, sink, timeoutMs, 0, nullptr);
    task->SetNetworkAccessManager(Environment::GetInstance()->getShareNetworkAccessMgr());
    task->Start();
    return task;
}

QNetworkReply *get(QNetworkAccessManager &manager, const QString &url)
{
    return manager.get(QNetworkRequest(QUrl(url, QUrl::TolerantMode)));
}

QString errorTextOf(const QNetworkReply &reply)
{
    QString text = reply.errorString();
    for (const QUrl &url : {reply.url(), reply.request().url()})
        text.replace(url.toString(), url.toString(QUrl::RemoveQuery | QUrl::RemoveFragment));
    return text;
}

} // namespace ServiceRequest
