#pragma once

#include <memory>

#include <QTimer>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"
#include "support/coresupport/TaskAbstract.h"

class QJsonObject;
class QNetworkAccessManager;
class QNetworkReply;
class ResDownload;
class ResInfo;

/// Installs one resource: makes its record fresh, then downloads its file.
///
/// Belongs to a ResObj; main thread only. The outcome is told by the install status alone: the task
/// itself never finishes, and start() on one that runs joins the running flow. The service is asked
/// for a record once in a process; where that fails, the download goes on with the record at hand.
class RIVETCORE_EXPORT ResUpdateTask : public TaskAbstract
{
    Q_OBJECT
public:
    /// Where the content of the record came from.
    enum UpdateStatus {
        NotUpdated = 0,
        UpdatedFromCache = 1,
        UpdatedFromRemote = 2, ///< the service is not asked again
    };

    /// The values 0 to 4 are those of FileDownloadAbstract::DLStatus.
    enum ResInstallStatus {
        ResInstallIdle = 0,        ///< not started, or stopped
        ResInstallUpdating = 1,    ///< the record is being refreshed, or the download is queued
        ResInstallDownloading = 2, ///< the download runs
        ResInstallDone = 3,        ///< the file is complete
        ResInstallFailed = 4,      ///< the download failed
        ResInstallDeleted = 5,     ///< deleteRes() was called
    };

    /// @p info is not owned and may be null, whereupon every installation fails.
    ResUpdateTask(uint id, ResType type, ResInfo *info, QObject *parent);
    /// Ends a request silently. The transfer goes on, for others may want it.
    ~ResUpdateTask() override;

    /// Asks the service for the record, unless that has been done or is under way, and goes on with
    /// the download.
    void updateResInfoFromNet();
    /// Takes back one start(). The last one ends the transfer; what was received stays.
    void stop();
    /// Ends the transfer, and removes the file, all partial data and the .inf file.
    void deleteRes();

    uint installStatus() const { return m_installStatus; }
    /// Per cent; 100 when the file is complete.
    uint installProgress() const;
    /// Bytes per second, as told last.
    uint dlSpeed() const { return m_speed; }
    /// Bytes; 1 without a record.
    quint64 dlTotalSize();
    quint64 dlDownloadSize();

    UpdateStatus updateStatus() const { return m_updateStatus; }
    void setUpdateStatus(UpdateStatus status) { m_updateStatus = status; }

Q_SIGNALS:
    /// For the host; nothing in this library emits it.
    void resInfoUpdated(bool fromRemote);
    /// Both values are those of ResInstallStatus.
    void installStatusChanged(uint oldStatus, uint newStatus);
    void installProgressChanged(uint percent);
    /// Bytes per second.
    void dlSpeedUpdated(qulonglong dlSpeed);

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void onUpdateGameListInfoFinished();
    void onUpdateResInfoFinished();
    void onDLStatuschanged(uint oldStatus, uint newStatus);
    void onProgressChanged(uint percentage);
    void onDlSpeedUpdated(qulonglong dlSpeed);

private:
    uint AddRef();
    uint ReleaseRef();
    void ClearRef();
    void changeStatus(ResInstallStatus status);
    void changeProgress(uint percent);
    void updateDlSpeed(quint64 speed);
    void startDownload();
    void startTransfer();
    void safeDeleteLater(QNetworkReply *reply);
    void askForGameClient();
    void askForRecord();
    void takeRecord(const QJsonObject &record);
    void goOnWithDownload();
    bool isUnderWay() const;
    void stopDownload();
    void abortRefresh();
    void complainOfRefresh(const QString &error);
    std::shared_ptr<ResDownload> download();
    std::shared_ptr<ResDownload> downloadOrComplain();

    const uint m_id;
    const ResType m_type;
    UpdateStatus m_updateStatus = NotUpdated;
    std::shared_ptr<QNetworkAccessManager> m_manager;
    QNetworkReply *m_reply = nullptr;  ///< in flight
    bool m_isQueued = false;           ///< the request waits for its turn
    bool m_isRefreshTakenBack = false; ///< the last request was, by stop()
    ResInstallStatus m_installStatus = ResInstallIdle;
    uint m_progress = 0;
    uint m_speed = 0;
    uint m_refCount = 0; ///< install requests that are outstanding
    ResInfo *m_resInfo;
    std::shared_ptr<ResDownload> m_download; ///< of m_downloadUrl, once asked for
    QString m_downloadUrl;
    QTimer m_startTimer; ///< starts the transfer on a later turn of the event loop
};
