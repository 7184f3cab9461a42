#include "support/transferservice/FileTransfer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QThread>

#include "support/jsonfskit/HeldEntry.h"
#include "support/jsonfskit/Log.h"
#include "support/transferservice/FileDigest.h"
#include "support/transferservice/ReplyStream.h"
#include "support/transferservice/ResponseHead.h"
#include "support/transferservice/TransferPlace.h"

using platform::RenameOutcome;

namespace {

constexpr int ok = 200;
constexpr int partialContent = 206;
constexpr int notModified = 304;
constexpr int rangeNotSatisfiable = 416;

constexpr qint64 leastSyncedBytes = 256 * 1024;

bool isHttp(const QUrl &url)
{
    const QString scheme = url.scheme().toLower();
    return url.isValid() && (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

QNetworkRequest makeRequest(const QUrl &url, const LocalCopy &copy)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    // Left alone, Qt asks for compression and unpacks: neither length nor range would fit.
    request.setRawHeader("Accept-Encoding", "identity");
    if (copy.isResumable()) {
        request.setRawHeader("Range", "bytes=" + QByteArray::number(copy.partBytes()) + '-');
        request.setRawHeader("If-Range", copy.partRecord().rangeValidator);
    } else if (copy.hasFile()) {
        const DownloadRecord &file = copy.fileRecord();
        if (!file.etag.isEmpty())
            request.setRawHeader("If-None-Match", file.etag);
        else if (!file.lastModified.isEmpty())
            request.setRawHeader("If-Modified-Since", file.lastModified);
    }
    return request;
}

} // namespace

FileTransfer::FileTransfer(const QUrl &url, const QString &filePath,
                           std::shared_ptr<QNetworkAccessManager> manager,
                           const TransferTiming &timing)
    : m_url(url),
      m_manager(std::move(manager)),
      m_timing(timing),
      m_schedule(timing),
      m_copy(filePath, url),
      m_pause(this)
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &FileTransfer::queueForRequest);
}

FileTransfer::~FileTransfer() = default;

void FileTransfer::begin()
{
    if (!m_manager || !isHttp(m_url) || !m_copy.makeResumable())
        end(false);
    else
        queueForRequest();
}

void FileTransfer::keepWhatArrived()
{
    if (!m_stream || !m_takesBody)
        return;
    const QByteArray rest = m_stream->takeRest();
    // A failure is on the log, and what could be written is kept.
    (void)m_copy.append(rest.constData(), rest.size());
}

qint64 FileTransfer::receivedBytes() const
{
    return m_copy.availableBytes();
}

qint64 FileTransfer::totalBytes() const
{
    return m_copy.expectedBytes();
}

void FileTransfer::queueForRequest()
{
    m_place = std::make_unique<TransferPlace>(*m_manager, m_url);
    connect(m_place.get(), &TransferPlace::granted, this, &FileTransfer::sendRequest);
}

void FileTransfer::sendRequest()
{
    m_takesBody = false;
    m_stream =
        std::make_unique<ReplyStream>(m_manager->get(makeRequest(m_url, m_copy)), m_timing.stall);
    connect(m_stream.get(), &ReplyStream::headArrived, this, &FileTransfer::onHead);
    connect(m_stream.get(), &ReplyStream::pieceArrived, this, &FileTransfer::onPiece);
    connect(m_stream.get(), &ReplyStream::ended, this, &FileTransfer::onEnded);
}

void FileTransfer::onHead()
{
    const ResponseHead head = readResponseHead(m_stream->reply());
    const bool isResumption = m_copy.isResumable();
    if (head.status == ok || (head.status == partialContent && isResumption))
        onBody(head);
    else if (head.status == notModified && !isResumption && m_copy.hasFile())
        end(true);
    else if (head.status == rangeNotSatisfiable && isResumption)
        dropAndRetry();
    else if (isPassingStatus(head.status))
        retry(head);
    else
        end(false);
}

void FileTransfer::onBody(const ResponseHead &head)
{
    if (head.status == partialContent) {
        if (!fitsPart(head))
            return dropAndRetry();
        if (!m_copy.resumePart(head.record.totalBytes))
            return end(false);
    } else {
        if (m_copy.partBytes() > 0)
            m_schedule.noteDrop();
        if (!m_copy.beginPart(head.record))
            return end(false);
    }
    m_takesBody = true;
    const QPointer<FileTransfer> self(this);
    Q_EMIT receiving();
    if (self)
        Q_EMIT sizesChanged();
}

/// A server may ignore If-Range or mix up versions: offset, length and tag have to be ours.
bool FileTransfer::fitsPart(const ResponseHead &head) const
{
    const DownloadRecord part = m_copy.partRecord();
    const auto agree = [](const QByteArray &ours, const QByteArray &theirs) {
        return ours.isEmpty() || theirs.isEmpty() || ours == theirs;
    };
    return m_copy.isPartUntouched() && head.firstByte == m_copy.partBytes() &&
           (part.totalBytes < 0 || head.record.totalBytes == part.totalBytes) &&
           agree(part.etag, head.record.etag) && agree(part.lastModified, head.record.lastModified);
}

void FileTransfer::onPiece(const char *data, qint64 size)
{
    m_arrivedBytes += size;
    if (!m_copy.append(data, size))
        end(false);
    else
        Q_EMIT sizesChanged();
}

void FileTransfer::onEnded()
{
    const qint64 total = m_copy.partRecord().totalBytes;
    const bool isWhole = m_takesBody && m_stream->isWhole();
    if (!m_takesBody && faultOf(m_stream->reply()) == ExchangeFault::Lasting)
        end(false);
    else if (total >= 0 && m_copy.partBytes() > total)
        dropAndRetry();
    else if (isWhole && (total < 0 || m_copy.partBytes() == total))
        finishPart();
    else if (!m_takesBody && m_copy.hasFile() && m_copy.partBytes() == 0)
        end(true); // not reached, but the player can start with what is there
    else
        retry({});
}

void FileTransfer::dropAndRetry()
{
    m_schedule.noteDrop();
    if (m_copy.dropPart())
        retry({});
    else
        end(false);
}

void FileTransfer::retry(const ResponseHead &head)
{
    endExchange();
    const auto pause = m_schedule.nextPause(m_copy.partBytes(), head.retryAfter);
    if (pause)
        m_pause.start(*pause);
    else
        giveUp();
}

void FileTransfer::finishPart()
{
    endExchange();
    const AnnouncedDigest digest = m_copy.partRecord().digest;
    if (digest.algorithm.isEmpty())
        return syncPart();
    m_digest = std::make_unique<FileDigest>(m_copy.partPath(), digest);
    connect(m_digest.get(), &FileDigest::compared, this, [this](bool isEqual) {
        m_digest.release()->deleteLater();
        if (isEqual)
            syncPart();
        else
            dropAndRetry();
    });
    m_digest->start();
}

/// A rename may reach the disk before the bytes do: after a loss of power, the file would be there
/// with its full length and without its content. A thread of its own waits for the disk, and may
/// outlive this object. Small files come by the hundred, and each would wait as long: they don't.
void FileTransfer::syncPart()
{
    if (m_copy.partBytes() < leastSyncedBytes)
        return completePart();
    const auto isSynced = std::make_shared<bool>(false);
    QThread *thread = QThread::create(
        [isSynced, path = m_copy.partPath()] { *isSynced = platform::syncFile(path); });
    connect(thread, &QThread::finished, this, [this, isSynced] {
        if (*isSynced)
            return completePart();
        Log::warning(QLatin1String("download: the disk did not take ") + m_copy.partPath());
        (void)m_copy.dropPart(); // a failure is on the log too
        end(false);
    });
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}

void FileTransfer::completePart()
{
    const RenameOutcome outcome = m_copy.completePart();
    if (outcome == RenameOutcome::Held && !m_held.isValid())
        m_held.start();
    if (outcome == RenameOutcome::Held && m_held.elapsed() < FS::longestHold.count())
        return QTimer::singleShot(FS::pauseWhileHeld, this, &FileTransfer::completePart);
    if (outcome == RenameOutcome::Held)
        Log::warning(QLatin1String("download: somebody holds the file of ") + m_copy.partPath());
    end(outcome == RenameOutcome::Renamed);
}

void FileTransfer::giveUp()
{
    end(m_copy.hasFile());
}

void FileTransfer::endExchange()
{
    m_stream.reset();
    m_place.reset();
}

void FileTransfer::end(bool isComplete)
{
    endExchange();
    m_copy.closePart();
    Q_EMIT ended(isComplete);
}
