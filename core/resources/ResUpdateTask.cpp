#include "core/resources/ResUpdateTask.h"

#include <utility>

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>

#include "core/foundation/CachedAnswer.h"
#include "core/foundation/Environment.h"
#include "core/resources/GameClientListInfo.h"
#include "core/resources/RequestGate.h"
#include "core/resources/ResDownload.h"
#include "core/resources/ResDownloadMgr.h"
#include "core/resources/ResInfo.h"
#include "core/resources/ResInfoJson.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Log.h"

ResUpdateTask::ResUpdateTask(uint id, ResType type, ResInfo *info, QObject *parent)
    : TaskAbstract(parent),
      m_id(id),
      m_type(type),
      m_manager(Environment::GetInstance()->getShareNetworkAccessMgr()),
      m_resInfo(info),
      m_startTimer(this)
{
    setObjectName(QStringLiteral("resObj,id:%1,type:%2").arg(id).arg(type));
    m_startTimer.setSingleShot(true);
    m_startTimer.setInterval(0);
    connect(&m_startTimer, &QTimer::timeout, this, &ResUpdateTask::startTransfer);
}

ResUpdateTask::~ResUpdateTask()
{
    delete m_reply;
}

uint ResUpdateTask::AddRef()
{
    return ++m_refCount;
}

uint ResUpdateTask::ReleaseRef()
{
    return m_refCount > 0 ? --m_refCount : 0;
}

void ResUpdateTask::ClearRef()
{
    m_refCount = 0;
}

void ResUpdateTask::onTaskRun()
{
    if (AddRef() > 1)
        Log::debug(QStringLiteral("this resobj is installing."));
    else if (m_updateStatus != UpdatedFromRemote)
        updateResInfoFromNet();
    else if (!m_resInfo)
        Log::critical(QStringLiteral("resInfo null pointer, unexpected error."));
    else
        startDownload();
}

void ResUpdateTask::updateResInfoFromNet()
{
    const bool isPending = m_reply || m_isQueued;
    if (m_updateStatus == UpdatedFromRemote || (isPending && isUnderWay()))
        return;
    changeStatus(ResInstallUpdating);
    if (isPending)
        return; // of a run that was stopped; its end goes on with this one
    if (m_type == ResTypeGame)
        askForGameClient();
    else
        askForRecord();
}

void ResUpdateTask::askForGameClient()
{
    auto *list = GameClientListInfo::GetInstance();
    if (list->isListUpdated()) {
        onUpdateGameListInfoFinished();
        return;
    }
    connect(list, &GameClientListInfo::updateListFinished, this,
            &ResUpdateTask::onUpdateGameListInfoFinished, Qt::UniqueConnection);
    list->updateList();
}

void ResUpdateTask::askForRecord()
{
    m_isQueued = true;
    m_isRefreshTakenBack = false;
    RequestGate::GetInstance()->enqueue(this, [this] {
        m_isQueued = false;
        const QString url = QString::fromUtf8(g_resInfo_url).arg(m_id);
        m_reply = m_manager->get(QNetworkRequest(QUrl(url)));
        connect(m_reply, &QNetworkReply::finished, this, &ResUpdateTask::onUpdateResInfoFinished);
        return m_reply;
    });
}

void ResUpdateTask::onUpdateGameListInfoFinished()
{
    if (!m_resInfo) {
        changeStatus(ResInstallFailed);
        return;
    }
    const auto *list = GameClientListInfo::GetInstance();
    if (list->isListUpdated())
        takeRecord(list->gameClientInfo(m_id));
    goOnWithDownload();
}

void ResUpdateTask::onUpdateResInfoFinished()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply) {
        Log::debug(QStringLiteral("sender pointer is null pointer."));
        return;
    }
    safeDeleteLater(reply);
    if (!m_resInfo) {
        changeStatus(ResInstallFailed);
        return;
    }
    if (reply->error() == QNetworkReply::NoError)
        takeRecord(QJsonDocument::fromJson(CachedAnswer::filteredBody(*reply))
                       .object()[QLatin1String("resource")]
                       .toObject());
    else
        complainOfRefresh(reply->errorString());
    goOnWithDownload();
}

void ResUpdateTask::complainOfRefresh(const QString &error)
{
    if (m_installStatus != ResInstallIdle)
        Log::critical(QLatin1String("updateResInfo failed with err:") % error);
}

/// That of another resource would make this one pass for it, and a step wait for this one for ever.
void ResUpdateTask::takeRecord(const QJsonObject &record)
{
    if (ResInfoJson::keyIn(record) == ResourceKey::pack(m_id, m_type))
        m_resInfo->loadFromRemote(record);
}

/// A failed refresh fails nothing: the record may be good from its cache. A resource that was
/// deleted meanwhile stays so, whoever else has the list of clients fetched.
void ResUpdateTask::goOnWithDownload()
{
    if (m_installStatus != ResInstallIdle && m_installStatus != ResInstallDeleted)
        startDownload();
}

void ResUpdateTask::startDownload()
{
    if (!m_resInfo) {
        changeStatus(ResInstallFailed);
        return;
    }
    m_download.reset(); // somebody else may have redirected it
    const auto instance = download();
    connect(instance.get(), &ResDownload::dlStatuschanged, this, &ResUpdateTask::onDLStatuschanged,
            Qt::UniqueConnection);
    connect(instance.get(), &ResDownload::progressChanged, this, &ResUpdateTask::onProgressChanged,
            Qt::UniqueConnection);
    connect(instance.get(), &ResDownload::dlSpeedUpdated, this, &ResUpdateTask::onDlSpeedUpdated,
            Qt::UniqueConnection);
    m_startTimer.start();
}

/// Who still waits after another has taken back the request may have no source to go on with. By
/// now all that were stopped together are, so this sends nothing for those.
void ResUpdateTask::startTransfer()
{
    if (m_isRefreshTakenBack && m_resInfo && m_resInfo->downloadUrl().isEmpty())
        askForRecord();
    else if (const auto instance = download())
        instance->start();
}

/// The one transfer of the resource; its next start fetches what the record names now.
std::shared_ptr<ResDownload> ResUpdateTask::download()
{
    if (!m_resInfo)
        return nullptr;
    // A step asks each of its resources for sizes again and again.
    if (!m_download || m_downloadUrl != m_resInfo->downloadUrl()) {
        m_downloadUrl = m_resInfo->downloadUrl();
        m_download =
            ResDownloadMgr::GetInstance()->resDownloadInstance(m_id, m_type, QUrl(m_downloadUrl));
    }
    return m_download;
}

void ResUpdateTask::onDLStatuschanged(uint, uint newStatus)
{
    if (newStatus > ResInstallFailed)
        return;
    const auto status = static_cast<ResInstallStatus>(newStatus);
    if (status != ResInstallUpdating && status != ResInstallDownloading)
        ClearRef();
    // The transfer of a deleted resource comes to rest, which does not undo the deletion.
    if (m_installStatus != ResInstallDeleted || status != ResInstallIdle)
        changeStatus(status);
}

void ResUpdateTask::onProgressChanged(uint percentage)
{
    changeProgress(percentage);
}

void ResUpdateTask::onDlSpeedUpdated(qulonglong dlSpeed)
{
    updateDlSpeed(dlSpeed);
}

bool ResUpdateTask::isUnderWay() const
{
    return m_installStatus == ResInstallUpdating || m_installStatus == ResInstallDownloading ||
           m_startTimer.isActive();
}

void ResUpdateTask::stop()
{
    if (!isUnderWay())
        return;
    if (!m_resInfo)
        Log::critical(QStringLiteral("res info object pointer is null, id %1, type %2")
                          .arg(m_id)
                          .arg(m_type));
    // A receiver of the signals may delete this task.
    const QPointer<ResUpdateTask> self(this);
    if (ReleaseRef() == 0)
        stopDownload();
    if (self)
        abortRefresh();
}

/// The download goes on with the record at hand if somebody else still waits for it.
void ResUpdateTask::abortRefresh()
{
    m_isRefreshTakenBack = m_isRefreshTakenBack || m_reply || m_isQueued;
    if (m_reply) {
        m_reply->abort(); // tells its end at once
    } else if (m_isQueued) {
        m_isQueued = false;
        RequestGate::GetInstance()->withdraw(this);
        complainOfRefresh(tr("Operation canceled"));
        goOnWithDownload();
    }
}

void ResUpdateTask::stopDownload()
{
    m_startTimer.stop();
    const QPointer<ResUpdateTask> self(this);
    if (const auto instance = download())
        instance->stop();
    // One that was done, failed or deleted before this start stays what it was.
    if (self && isUnderWay())
        changeStatus(ResInstallIdle);
}

void ResUpdateTask::deleteRes()
{
    const QPointer<ResUpdateTask> self(this);
    stop();
    if (!self)
        return;
    ClearRef();
    m_startTimer.stop();
    changeStatus(ResInstallDeleted);
    if (!self)
        return;
    (void)download(); // the manager does not know one whose file is of an earlier process
    ResDownloadMgr::GetInstance()->deleteDownloadInstance(m_id, m_type);
    m_progress = 0;
    if (m_resInfo)
        m_resInfo->deleteCache();
}

uint ResUpdateTask::installProgress() const
{
    return m_installStatus == ResInstallDone ? 100 : m_progress;
}

quint64 ResUpdateTask::dlTotalSize()
{
    const auto instance = downloadOrComplain();
    return instance ? instance->GetTotalFileSize() : 1;
}

quint64 ResUpdateTask::dlDownloadSize()
{
    const auto instance = downloadOrComplain();
    return instance ? instance->GetCurDownloadedSize() : 1;
}

std::shared_ptr<ResDownload> ResUpdateTask::downloadOrComplain()
{
    if (!m_resInfo)
        Log::critical(QStringLiteral("resInfo null pointer, unexpected error."));
    return download();
}

void ResUpdateTask::changeStatus(ResInstallStatus status)
{
    const ResInstallStatus oldStatus = std::exchange(m_installStatus, status);
    if (oldStatus != status)
        Q_EMIT installStatusChanged(oldStatus, status);
}

void ResUpdateTask::changeProgress(uint percent)
{
    m_progress = percent;
    Q_EMIT installProgressChanged(percent);
}

void ResUpdateTask::updateDlSpeed(quint64 speed)
{
    m_speed = static_cast<uint>(speed);
    Q_EMIT dlSpeedUpdated(speed);
}

void ResUpdateTask::safeDeleteLater(QNetworkReply *reply)
{
    if (reply)
        reply->deleteLater();
    m_reply = nullptr;
}
