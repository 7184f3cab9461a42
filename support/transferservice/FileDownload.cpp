#include "support/transferservice/FileDownload.h"

#include <QPointer>

#include "support/jsonfskit/FS.h"
#include "support/transferservice/FileTransfer.h"
#include "support/transferservice/LocalCopy.h"

namespace {

constexpr std::chrono::milliseconds speedInterval{500};

} // namespace

FileDownload::FileDownload(QObject *parent) : FileDownloadAbstract(parent), m_speedTimer(this)
{
    m_speedTimer.setInterval(speedInterval);
    m_speedTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_speedTimer, &QTimer::timeout, this, &FileDownload::measureSpeed);
}

FileDownload::~FileDownload() = default;

quint64 FileDownload::GetTotalFileSize()
{
    return quint64(currentSizes().totalBytes);
}

quint64 FileDownload::GetCurDownloadedSize()
{
    return quint64(currentSizes().receivedBytes);
}

quint64 FileDownload::GetDlSpeed()
{
    return m_speed;
}

void FileDownload::start()
{
    if (m_transfer)
        return;
    m_lastSizes.reset();
    m_percent = 0;
    m_transfer =
        std::make_unique<FileTransfer>(m_url, m_filePath, networkAccessManager(), m_timing);
    FileTransfer *transfer = m_transfer.get();
    connect(transfer, &FileTransfer::receiving, this, &FileDownload::onReceiving);
    connect(transfer, &FileTransfer::sizesChanged, this, &FileDownload::onSizesChanged);
    connect(transfer, &FileTransfer::ended, this, &FileDownload::onEnded);
    // The transfer begins on the next turn, so a receiver of this signal may do as it likes.
    QMetaObject::invokeMethod(transfer, &FileTransfer::begin, Qt::QueuedConnection);
    changeDlStatus(DLStatus::Preparing);
}

void FileDownload::stop()
{
    if (!m_transfer)
        return;
    m_transfer->keepWhatArrived();
    endTransfer();
    changeDlStatus(DLStatus::Idle);
}

void FileDownload::removeFile()
{
    endTransfer();
    LocalCopy::removeAll(m_filePath);
    m_percent = 0;
    if (status() != DLStatus::Idle)
        changeDlStatus(DLStatus::Idle);
}

FileDownload::Sizes FileDownload::currentSizes()
{
    if (m_transfer)
        return {m_url, m_transfer->receivedBytes(), m_transfer->totalBytes()};
    if (!m_lastSizes || m_lastSizes->url != m_url) {
        const LocalCopy copy(m_filePath, m_url);
        m_lastSizes = {m_url, copy.availableBytes(), copy.expectedBytes()};
    }
    return *m_lastSizes;
}

void FileDownload::endTransfer()
{
    m_transfer.reset();
    m_lastSizes.reset();
    m_speedTimer.stop();
    m_speed = 0;
}

void FileDownload::onReceiving()
{
    if (status() == DLStatus::Downloading)
        return;
    m_measuredBytes = m_transfer->arrivedBytes();
    m_speedClock.start();
    m_speedTimer.start();
    changeDlStatus(DLStatus::Downloading);
}

void FileDownload::onSizesChanged()
{
    const Sizes sizes = currentSizes();
    if (sizes.totalBytes <= 0)
        return;
    const auto percent = quint32(sizes.receivedBytes * 100 / sizes.totalBytes);
    if (percent == m_percent)
        return;
    m_percent = percent;
    changeProgress(percent);
}

void FileDownload::onEnded(bool isComplete)
{
    // Still inside a signal of the transfer.
    m_transfer->disconnect(this);
    m_transfer.release()->deleteLater();
    endTransfer();
    if (isComplete && m_percent != 100) {
        m_percent = 100;
        const QPointer<FileDownload> self(this);
        changeProgress(100);
        const bool isStillComplete = self && !m_transfer && m_percent == 100;
        if (!isStillComplete)
            return;
    }
    changeDlStatus(isComplete ? DLStatus::Finished : DLStatus::Failed);
}

void FileDownload::measureSpeed()
{
    const qint64 elapsedMs = m_speedClock.elapsed();
    if (elapsedMs < speedInterval.count())
        return;
    m_speedClock.start();
    const qint64 arrived = m_transfer->arrivedBytes();
    m_speed = quint64((arrived - m_measuredBytes) * 1000 / elapsedMs);
    m_measuredBytes = arrived;
    Q_EMIT dlSpeedUpdated(m_speed);
}
