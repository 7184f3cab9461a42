#pragma once

#include <memory>

#include <QObject>
#include <QString>
#include <QUrl>

#include "support/transferservice/TransferServiceExport.h"

class QNetworkAccessManager;

/// One URL that is downloaded into one file, as its users see it.
///
/// Lives on the thread that made it; its owner deletes it, which ends a transfer silently and keeps
/// what was received. A subclass sets the source and the target before the first start().
class TRANSFERSERVICE_EXPORT FileDownloadAbstract : public QObject
{
    Q_OBJECT
public:
    enum class DLStatus : quint32 {
        Idle = 0, ///< not started yet, or stopped
        Preparing = 1,
        Downloading = 2,
        Finished = 3, ///< the file is complete
        Failed = 4,
    };

    explicit FileDownloadAbstract(QObject *parent = nullptr);
    ~FileDownloadAbstract() override;

    /// Bytes of the whole file; 0 while unknown.
    virtual quint64 GetTotalFileSize() = 0;
    /// Bytes on disk so far, including what an earlier run left.
    virtual quint64 GetCurDownloadedSize() = 0;
    /// Bytes per second; 0 when nothing is transferred.
    virtual quint64 GetDlSpeed() = 0;

public Q_SLOTS:
    /// Starts or resumes; does nothing while a transfer runs. Does not block. The end comes as
    /// dlStatuschanged() with Finished, Failed or Idle.
    virtual void start() = 0;
    /// Ends the transfer and keeps what was received.
    virtual void stop() = 0;
    /// Ends the transfer and deletes the file and any partial data; the status becomes Idle. May
    /// block for up to two seconds per file when somebody holds one; what stays then is named on
    /// the log.
    virtual void removeFile() = 0;

protected:
    /// Records @p status and emits dlStatuschanged(). Receivers may delete the download.
    virtual void changeDlStatus(DLStatus status);
    /// Emits progressChanged(). Receivers may delete the download.
    virtual void changeProgress(quint32 percent);

public:
    /// Shared; a running transfer keeps the manager that it was started with.
    void SetNetworkAccessManager(std::shared_ptr<QNetworkAccessManager> manager);

Q_SIGNALS:
    /// Both values are those of DLStatus.
    void dlStatuschanged(quint32 oldStatus, quint32 newStatus);
    /// A whole percent, 0 to 100.
    void progressChanged(quint32 percent);
    /// Bytes per second, at most twice a second.
    void dlSpeedUpdated(quint64 bytesPerSecond);

protected:
    DLStatus status() const { return m_status; }
    std::shared_ptr<QNetworkAccessManager> networkAccessManager() const { return m_manager; }

    QUrl m_url;          ///< what the next start() fetches
    QString m_filePath;  ///< where it goes
    QString m_directory; ///< the folder of m_filePath; made when bytes arrive

private:
    std::shared_ptr<QNetworkAccessManager> m_manager;
    DLStatus m_status = DLStatus::Idle;
};
