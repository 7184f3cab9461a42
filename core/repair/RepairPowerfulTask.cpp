#include "core/repair/RepairPowerfulTask.h"

#include <QCoreApplication>
#include <QDir>
#include <QFutureSynchronizer>
#include <QMutexLocker>
#include <QtConcurrent>

#include "base/LazySingleton.h"
#include "core/config/GameResConfig.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/foundation/FSH.h"
#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

/// Asked for on the main thread, to which the settings belong.
struct RepairPowerfulTask::Places
{
    QString gameData;
    QString downloads;
    QString records; ///< of the host and the core
    QString program;
};

/// The task as the work sees it, for as long as there is one.
struct RepairPowerfulTask::Listener
{
    QMutex mutex;
    RepairPowerfulTask *task;

    explicit Listener(RepairPowerfulTask *listening) : task(listening) {}

    void setStatus(const QString &text)
    {
        const QMutexLocker lock(&mutex);
        if (task)
            QMetaObject::invokeMethod(
                task, [to = task, text] { to->setStatus(text); }, Qt::QueuedConnection);
    }
};

namespace {

/// Made after the singletons that the work needs, so it goes before them.
class RunningRepairs : public QFutureSynchronizer<bool>
{
};

bool isSame(const QString &folder, const QString &path)
{
    return platform::isSameEntry(platform::toNative(folder), platform::toNative(path));
}

bool isBelow(const QString &folder, const QString &path)
{
    const QString relative = QDir(folder).relativeFilePath(path);
    return QDir::isRelativePath(relative) && relative != QLatin1String(".") &&
           relative != QLatin1String("..") && !relative.startsWith(QLatin1String("../"));
}

/// @p folder, and those in it, where they really lie: each of them may be a link to elsewhere.
QStringList realFolders(const QString &folder)
{
    QStringList folders{platform::realPath(folder)};
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries)
        folders << platform::realPath(entry.absoluteFilePath());
    return folders;
}

FS::RemovalResult refuse(const QString &gameData)
{
    Log::critical(QLatin1String("the game data directory is missing or not for game data alone: ") %
                  gameData);
    return {gameData.isNull() ? QStringLiteral("") : gameData}; // null would tell of a success
}

/// Leaves what lies in @p own, folders that are not the player's. Each path may be empty.
FS::RemovalResult clearGameData(const QString &gameData, const QString &downloads,
                                const QStringList &own)
{
    if (gameData.isEmpty())
        return refuse(gameData);
    // The player may have moved his game data to another drive and left a link.
    const QString folder = platform::realPath(gameData);
    QStringList kept{QDir(gameData).relativeFilePath(downloads)};
    const QStringList stores = realFolders(downloads);
    for (const QString &store : stores) {
        if (isSame(store, folder) || isBelow(store, folder))
            return refuse(gameData);
        kept << store;
    }
    for (const QString &path : own) {
        const QString real = platform::realPath(path);
        if (isSame(real, folder))
            return refuse(gameData);
        // What lies above the game data does not keep them.
        if (isBelow(folder, real))
            kept << real;
    }
    // As CCommonFunction::ClearFolderButExclude() does, but it tells what could not go.
    return FS::clearFolder(folder, kept, FS::ClearScope::WholeTree);
}

} // namespace

RepairPowerfulTask::RepairPowerfulTask(QObject *parent)
    : TaskAbstract(parent), m_listener(std::make_shared<Listener>(this))
{
    connect(&m_watcher, SIGNAL(finished()), this, SLOT(onPowerfulRepairFinished()));
}

RepairPowerfulTask::~RepairPowerfulTask()
{
    const QMutexLocker lock(&m_listener->mutex);
    m_listener->task = nullptr;
}

void RepairPowerfulTask::onTaskRun()
{
    setTaskBrief(tr("Start powerful repair"));
    setStatus(tr("powerful repair..."));
    const Places places{FSH::gameDataAbsolutePath(), FSH::resourceDownloadBaseDir(),
                        FSH::localAppDataPath(), QCoreApplication::applicationDirPath()};
    GameResConfig::GetInstance();
    DeployResRecorder::GetInstance();
    DeployGameResRecorder::GetInstance();
    const QFuture<bool> future = QtConcurrent::run(
        [places, listener = m_listener] { return repairPowerful(places, *listener); });
    LazySingleton<RunningRepairs>::get()->addFuture(future);
    m_watcher.setFuture(future);
}

bool RepairPowerfulTask::repairPowerful(const Places &places, Listener &listener)
{
    bool isGood = true;
    const auto expect = [&](const FS::RemovalResult &result, const QString &complaint) {
        if (result)
            return;
        isGood = false;
        listener.setStatus(complaint);
        if (!result.firstFailure.isEmpty())
            listener.setStatus(
                tr("It can not be removed: %1").arg(QDir::toNativeSeparators(result.firstFailure)));
    };
    expect(clearGameData(places.gameData, places.downloads, {places.records, places.program}),
           tr("Remove res files Failed, check the game is running?"));

    GameResConfig *config = GameResConfig::GetInstance();
    if (!config)
        return false;
    config->clearCustomConfig(GameResConfig::allInstances);
    config->clearUnSetDefaultConfig(GameResConfig::allInstances);

    expect(FS::removeFile(places.records % QDir::separator() % QLatin1String("deploy.cache")),
           tr("Remove deploy files Failed, check the related file is opening?"));
    DeployResRecorder::GetInstance()->clearAllRecord();
    DeployGameResRecorder::GetInstance()->clearAllRecord();
    return isGood;
}

void RepairPowerfulTask::onPowerfulRepairFinished()
{
    if (m_watcher.result()) {
        emitSucceeded();
        return;
    }
    const QString reason = tr("powerful repair failed");
    Log::critical(reason);
    emitFailed(reason);
}
