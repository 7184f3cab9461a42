#include "support/transferservice/ResponseHead.h"

#include <QDateTime>
#include <QLocale>
#include <QNetworkReply>
#include <QRegularExpression>

#include "support/transferservice/FileDigest.h"

namespace {

constexpr int partialContent = 206;
constexpr int notModified = 304;

/// An HTTP date in the one form that servers must send.
QDateTime parseHttpDate(const QByteArray &text)
{
    QDateTime date = QLocale::c().toDateTime(QString::fromLatin1(text),
                                             QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"));
    date.setTimeSpec(Qt::UTC);
    return date;
}

/// A date is a strong validator only if the file had not changed for a while when it was sent.
bool isStrongDate(const QByteArray &lastModified, const QByteArray &sent)
{
    const QDateTime modified = parseHttpDate(lastModified);
    const QDateTime now = parseHttpDate(sent);
    return modified.isValid() && now.isValid() && modified.secsTo(now) >= 1;
}

QByteArray rangeValidator(const QNetworkReply &reply)
{
    const QByteArray etag = reply.rawHeader("ETag");
    if (etag.startsWith('"'))
        return etag;
    const QByteArray lastModified = reply.rawHeader("Last-Modified");
    return etag.isEmpty() && isStrongDate(lastModified, reply.rawHeader("Date")) ? lastModified
                                                                                 : QByteArray();
}

/// The digest of the whole file. Content-Digest and Content-MD5 are about the body, so with a part
/// of the file they say nothing about the whole.
AnnouncedDigest digestOf(const QNetworkReply &reply, bool isPartial)
{
    for (const char *header : {"Repr-Digest", "Digest", "Content-Digest"}) {
        if (isPartial && qstrcmp(header, "Content-Digest") == 0)
            continue;
        const AnnouncedDigest digest = strongestDigest(reply.rawHeader(header));
        if (!digest.algorithm.isEmpty())
            return digest;
    }
    const QByteArray md5 = isPartial ? QByteArray() : reply.rawHeader("Content-MD5").trimmed();
    return md5.isEmpty() ? AnnouncedDigest() : AnnouncedDigest{"md5", md5};
}

void readContentRange(const QByteArray &value, ResponseHead &head)
{
    static const QRegularExpression form(QStringLiteral("^bytes (\\d+)-\\d+/(\\d+|\\*)$"));
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(value.trimmed()));
    head.firstByte = match.hasMatch() ? match.captured(1).toLongLong() : -1;
    bool isKnown = false;
    const qint64 total = match.captured(2).toLongLong(&isKnown);
    head.record.totalBytes = isKnown ? total : -1;
}

std::optional<std::chrono::milliseconds> parseRetryAfter(const QByteArray &value)
{
    constexpr qlonglong oneDaySeconds = 24 * 60 * 60;
    bool isNumber = false;
    const qlonglong seconds = value.trimmed().toLongLong(&isNumber);
    if (isNumber)
        return std::chrono::seconds(qBound(0LL, seconds, oneDaySeconds));
    const QDateTime date = parseHttpDate(value.trimmed());
    if (!date.isValid())
        return std::nullopt;
    return std::chrono::milliseconds(qMax(0LL, QDateTime::currentDateTimeUtc().msecsTo(date)));
}

int statusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

} // namespace

bool hasFinalHead(const QNetworkReply &reply)
{
    const int status = statusOf(reply);
    return status >= 200 && (status < 300 || status >= 400 || status == notModified);
}

ResponseHead readResponseHead(const QNetworkReply &reply)
{
    ResponseHead head;
    head.status = statusOf(reply);
    const bool isPartial = head.status == partialContent;
    head.record.etag = reply.rawHeader("ETag");
    head.record.lastModified = reply.rawHeader("Last-Modified");
    head.record.rangeValidator = rangeValidator(reply);
    head.record.digest = digestOf(reply, isPartial);
    head.retryAfter = parseRetryAfter(reply.rawHeader("Retry-After"));
    if (isPartial) {
        readContentRange(reply.rawHeader("Content-Range"), head);
    } else {
        bool isKnown = false;
        const qint64 length = reply.rawHeader("Content-Length").toLongLong(&isKnown);
        head.record.totalBytes = isKnown && length >= 0 ? length : -1;
    }
    return head;
}

bool isPassingStatus(int status)
{
    return status == 408 || status == 429 || status >= 500;
}

ExchangeFault faultOf(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::SslHandshakeFailedError:
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::TooManyRedirectsError:
        return ExchangeFault::Lasting;
    default:
        // A redirection that leads nowhere ends without an error and without an answer.
        return statusOf(reply) / 100 == 3 ? ExchangeFault::Lasting : ExchangeFault::Passing;
    }
}
