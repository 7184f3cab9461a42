#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include <QElapsedTimer>
#include <QTimer>

#include "support/transferservice/FileDownloadAbstract.h"

class FileTransfer;

/// When a transfer counts as stalled, and how it is tried again.
struct TransferTiming
{
    /// Without a byte for so long is a fault.
    std::chrono::milliseconds stall = std::chrono::seconds(30);
    std::chrono::milliseconds firstPause{500}; ///< before the next try; doubled each time
    std::chrono::milliseconds longestPause = std::chrono::seconds(16);
    /// A server that sends us away for longer than this fails the transfer.
    std::chrono::milliseconds longestRetryAfter = std::chrono::minutes(2);
    int fruitlessTries = 5; ///< so many tries in a row without a new byte fail
};

/// A download that survives faults of the network, and the end of the process.
///
/// Lives on the thread that made it, whose event loop has to run. Received bytes go to
/// "<file>.part" as they come; the file appears by a rename when it is complete and its length and,
/// where the server sent one, its digest are right: it is whole or absent, or still the whole older
/// one, also after a loss of power (files under 256 KiB are not synced to the disk before). What a
/// resumption and a revalidation need lies beside it in "<file>.state".
///
/// Passing faults (a dropped or refused connection, a stall, 408, 429, 5xx) are tried again from
/// where the transfer stood; other HTTP errors and a full disk end in Failed and keep the part.
/// A complete file of the same URL is revalidated: an unchanged one keeps its date, and one whose
/// server cannot be reached counts as Finished.
class TRANSFERSERVICE_EXPORT FileDownload : public FileDownloadAbstract
{
    Q_OBJECT
public:
    explicit FileDownload(QObject *parent = nullptr);
    ~FileDownload() override;

    quint64 GetTotalFileSize() override;
    quint64 GetCurDownloadedSize() override;
    quint64 GetDlSpeed() override;

public Q_SLOTS:
    void start() override;
    void stop() override;
    void removeFile() override;

protected:
    TransferTiming m_timing; ///< read by start()

private:
    struct Sizes
    {
        QUrl url;
        qint64 receivedBytes = 0;
        qint64 totalBytes = 0;
    };

    Sizes currentSizes();
    void endTransfer();
    void onReceiving();
    void onSizesChanged();
    void onEnded(bool isComplete);
    void measureSpeed();

    std::unique_ptr<FileTransfer> m_transfer; ///< while one runs
    std::optional<Sizes> m_lastSizes;         ///< what the disk holds while none runs, once looked
    quint32 m_percent = 0;
    QTimer m_speedTimer;
    QElapsedTimer m_speedClock;
    qint64 m_measuredBytes = 0; ///< arrived up to the last measurement
    quint64 m_speed = 0;
};
