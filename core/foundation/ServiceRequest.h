#pragma once

#include <chrono>
#include <memory>

#include <QString>

class HttpRequestTask;
class IHttpRequestSink;
class QNetworkAccessManager;
class QNetworkReply;

/// What the request objects of the core share when they ask a service. Main thread.
namespace ServiceRequest {

/// The part of a URL by which the user-info, store and VIP services know who asks. It is good for
/// one request.
struct SignedQuery
{
    QString random;
    QString time; ///< seconds since the epoch
    QString signature;
};

SignedQuery signedQuery(quint32 bid);

/// @p format with the account id and the signed query in the place of %1 to %4.
QString signedUrl(const char *format, quint32 bid);

/// Sends a GET to @p url on the shared manager. The request reports to @p sink, with the id 0, and
/// ends silently when its last owner drops it.
std::shared_ptr<HttpRequestTask>
start(const QString &url, IHttpRequestSink *sink,
      std::chrono::milliseconds timeout = std::chrono::seconds(15));

/// Sends a plain GET to @p url, which is parsed tolerantly, without a time-out of its own.
QNetworkReply *get(QNetworkAccessManager &manager, const QString &url);

/// The text of the reply's error for the log: where it tells the URL, without the query, in which
/// digests and tokens stand.
QString errorTextOf(const QNetworkReply &reply);

} // namespace ServiceRequest
