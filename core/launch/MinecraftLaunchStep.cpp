#include "core/launch/MinecraftLaunchStep.h"

#include <cmath>
#include <utility>

#include <QJsonObject>
#include <QPointer>
#include <QThreadPool>

#include "core/deploy/DeployTask.h"
#include "core/launch/IResManager.h"
#include "core/launch/MCInstanceObj.h"
#include "core/resources/ResObj.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr double bytesPerMiB = 1024.0 * 1024.0;
constexpr quint32 downloadedPercent = 85;

quint64 keyOf(const ResInfo &info)
{
    return ResourceKey::pack(info.resId(), info.resType());
}

/// Maps bytes onto 0 to @p top by the logarithm of their MiB.
quint32 logarithmicShare(quint64 bytes, quint32 top, double factor)
{
    const double mebibytes = double(bytes) / bytesPerMiB;
    if (mebibytes < 1.0)
        return 0;
    return mebibytes > 1024.0 ? top : static_cast<quint32>(std::log2(mebibytes) * factor);
}

} // namespace

MinecraftLaunchStep::MinecraftLaunchStep(std::weak_ptr<MCInstanceObj> instance,
                                         IResManager *manager, QObject *parent)
    : GameLaunchBase(parent), m_instance(std::move(instance)), m_manager(manager)
{
}

MinecraftLaunchStep::~MinecraftLaunchStep()
{
    takeBackWaitingDeployments();
    for (DeployTask *task : qAsConst(m_deployTasks)) {
        if (!m_startedTasks.contains(task)) {
            delete task;
            continue;
        }
        task->disconnect(this);
        // One that runs deletes itself; it may have ended just now.
        connect(task, &TaskAbstract::finished, task, &QObject::deleteLater);
        if (task->isFinished())
            task->deleteLater();
    }
}

bool MinecraftLaunchStep::canAbort() const
{
    return true;
}

bool MinecraftLaunchStep::abort()
{
    disConnectUpdateCallbacks();
    // Once each: the next request to be taken back may be that of another step.
    for (const ResKey key : std::exchange(m_updatingRes, {})) {
        const auto object = knownRes(key);
        if (!object)
            continue;
        if (ResUpdateTask *task = object->updateTask())
            task->stop();
        else
            Log::warning(QStringLiteral("update task object null pointer"));
    }
    takeBackWaitingDeployments();
    for (DeployTask *task : qAsConst(m_deployTasks)) {
        if (task->canAbort())
            task->abort();
    }
    failWith(ErrUserCancel, tr("user cancel"));
    return true;
}

void MinecraftLaunchStep::onTaskRun()
{
    m_updatingRes.clear();
    m_deployingRes.clear();
    m_deployedRes.clear();
    m_expandedRes.clear();
    m_deployedBytes = 0;
    m_percent = 0;
    m_isListAwaited = false;
    m_lacksObject = false;
}

void MinecraftLaunchStep::emitFailed(QString reason)
{
    disConnectUpdateCallbacks();
    GameLaunchBase::emitFailed(reason);
}

/// A listener may delete the step at the error.
void MinecraftLaunchStep::failWith(GameLaunchBase::Error error, const QString &reason,
                                   const QString &line)
{
    const QPointer<MinecraftLaunchStep> self(this);
    setError(error);
    if (!line.isEmpty())
        Log::critical(line);
    if (self)
        emitFailed(reason);
}

void MinecraftLaunchStep::getReadyForTask()
{
    if (m_lacksObject) {
        failWith(ErrUnknown, tr("unknown error"));
        return;
    }
    if (!m_updatingRes.empty()) {
        advance(GetCheckUpdateProgress());
        return;
    }
    succeed();
}

bool MinecraftLaunchStep::announce(const QString &brief, const QString &text)
{
    const QPointer<MinecraftLaunchStep> self(this);
    setTaskBrief(brief);
    if (self)
        setStatus(text);
    return self && !isFinished();
}

void MinecraftLaunchStep::tell(const QString &text, quint32 percent)
{
    const QPointer<MinecraftLaunchStep> self(this);
    setStatus(text);
    if (self && !isFinished())
        advance(percent);
}

/// A listener may abort or delete the step at the last percent.
void MinecraftLaunchStep::succeed()
{
    const QPointer<MinecraftLaunchStep> self(this);
    advance(100);
    if (!self || isFinished())
        return;
    emitSucceeded();
    if (self)
        disConnectUpdateCallbacks();
}

/// A list that is fetched again for somebody else is no concern of a step that has its resources
/// or has ended.
void MinecraftLaunchStep::onListUpdated()
{
    if (std::exchange(m_isListAwaited, false) && isRunning())
        getReadyForTask();
}

void MinecraftLaunchStep::followDescribed(ResKey key, const QJsonObject &info)
{
    follow(key, m_manager
                    ? m_manager->resFromInfo(ResourceKey::idOf(key), ResourceKey::typeOf(key), info)
                    : nullptr);
}

void MinecraftLaunchStep::followMade(ResKey key)
{
    follow(key, m_manager ? m_manager->resOf(ResourceKey::idOf(key), ResourceKey::typeOf(key))
                          : nullptr);
}

void MinecraftLaunchStep::follow(ResKey key, std::shared_ptr<ResObj> object)
{
    m_updatingRes.insert(key);
    if (!object) {
        Log::critical(QStringLiteral("there is no object for the resource %1 of type %2")
                          .arg(ResourceKey::idOf(key))
                          .arg(ResourceKey::typeOf(key)));
        m_lacksObject = true;
    }
    connectToSlots(std::move(object));
}

void MinecraftLaunchStep::connectToSlots(std::shared_ptr<ResObj> object)
{
    if (!object)
        return;
    Followed &followed = m_followed[keyOf(*object)];
    if (followed.object != object.get() || !followed.statusConnection) {
        followed.object = object.get();
        followed.statusConnection = connect(
            object.get(), &ResObj::installStatusChanged, this,
            [this, source = object.get()](uint oldStatus, uint newStatus) {
                signalledBy(source, [&] { onTaskUpdateStatusChanged(oldStatus, newStatus); });
            });
    }
    connect(object.get(), &ResObj::dlSpeedUpdated, this,
            &MinecraftLaunchStep::onTaskDownloadProgress, Qt::UniqueConnection);
    ensureDeployTask(*object);
}

void MinecraftLaunchStep::ensureDeployTask(ResObj &object)
{
    const ResKey key = keyOf(object);
    const auto instance = m_instance.lock();
    if (m_deployTasks.contains(key) || !instance)
        return;
    DeployTask *task = object.createDeployResTask(instance->instanceDir(), instance->instanceId());
    if (!task)
        return;
    m_deployTasks.insert(key, task);
    connect(task, &TaskAbstract::finished, this,
            [this, task] { signalledBy(task, [this] { onTaskExtractFinished(); }); });
    connect(task, &TaskAbstract::progress, this, [this, task](quint64 done, quint64 total) {
        signalledBy(task, [&] { onTaskExtractProgress(done, total); });
    });
}

/// sender() looks through all connections to this object: too many where thousands are followed.
void MinecraftLaunchStep::signalledBy(QObject *source, const std::function<void()> &slot)
{
    const QPointer<MinecraftLaunchStep> self(this);
    QObject *const outer = std::exchange(m_source, source);
    slot();
    if (self)
        m_source = outer;
}

void MinecraftLaunchStep::disConnectUpdateCallbacks()
{
    for (const std::set<ResKey> *keys : {&m_updatingRes, &m_deployingRes}) {
        for (const ResKey key : *keys) {
            m_followed.remove(key);
            if (const auto object = knownRes(key))
                object->disconnect(this);
        }
    }
}

/// Null without a manager as well.
std::shared_ptr<ResObj> MinecraftLaunchStep::knownRes(ResKey key) const
{
    return m_manager ? m_manager->knownRes(ResourceKey::idOf(key), ResourceKey::typeOf(key))
                     : nullptr;
}

void MinecraftLaunchStep::onTaskUpdateStatusChanged(quint32, quint32 newStatus)
{
    auto *object = qobject_cast<ResObj *>(m_source);
    if (!object)
        return;
    switch (newStatus) {
    case ResUpdateTask::ResInstallDone:
        onResourceDone(*object);
        break;
    case ResUpdateTask::ResInstallFailed:
        failWith(ErrDownloadFailed, tr("download failed"));
        break;
    case ResUpdateTask::ResInstallIdle:
    case ResUpdateTask::ResInstallDeleted:
        failWith(ErrDownloadStopped, tr("download stop"));
        break;
    case ResUpdateTask::ResInstallDownloading:
        setTaskBrief(object->resType() == ResTypeJava   ? tr("updating the java")
                     : object->resType() == ResTypeGame ? tr("updating the game client")
                                                        : tr("updating the other resource"));
        break;
    default:
        break;
    }
}

void MinecraftLaunchStep::onResourceDone(ResObj &object)
{
    const ResKey key = keyOf(object);
    disconnect(m_followed.take(key).statusConnection);
    addDependencies(object);
    m_deployingRes.insert(key);
    m_updatingRes.erase(key);
    if (m_lacksObject)
        failWith(ErrUnknown, tr("unknown error"));
    else if (m_updatingRes.empty())
        startDeployments();
}

void MinecraftLaunchStep::addDependencies(const ResObj &object)
{
    const ResKey own = keyOf(object);
    if (m_expandedRes.contains(own))
        return;
    m_expandedRes.insert(own);
    const QList<quint64> dependencies = object.dependsOnList();
    for (const ResKey key : dependencies) {
        if (m_updatingRes.count(key) == 0)
            followMade(key);
    }
}

void MinecraftLaunchStep::startDeployments()
{
    const QPointer<MinecraftLaunchStep> self(this);
    advance(downloadedPercent);
    if (!self ||
        !announce(tr("extracting file..."), tr("extracting files, please wait for a moment...")))
        return;
    if (m_deployingRes.empty()) {
        Log::critical(QStringLiteral("unknown error."));
        failWith(ErrUnknown, tr("unknown error"));
        return;
    }
    bool hasAll = true;
    for (const ResKey key : m_deployingRes) {
        // The task of an earlier run of this step may have ended meanwhile.
        if (const auto object = knownRes(key))
            ensureDeployTask(*object);
        DeployTask *task = m_deployTasks.value(key);
        hasAll = hasAll && task;
        if (!task || m_startedTasks.contains(task))
            continue;
        m_startedTasks.insert(task);
        task->setAutoDelete(false);
        QThreadPool::globalInstance()->start(task, 0);
    }
    // What has no task, for the instance has gone, would be waited for without end.
    if (!hasAll)
        failWith(ErrDeployFailed, tr("deploy failed"));
}

void MinecraftLaunchStep::onTaskDownloadProgress(quint64)
{
    // A late signal does not take the bar back from the deployments.
    if (!m_manager || m_updatingRes.empty() || !isRunning())
        return;
    quint64 total = 0;
    quint64 done = 0;
    quint64 speed = 0;
    for (const std::set<ResKey> *keys : {&m_deployingRes, &m_updatingRes}) {
        for (const ResKey key : *keys) {
            const auto object = knownRes(key);
            if (!object) {
                Log::warning(QStringLiteral("get res object failed"));
                continue;
            }
            total += object->dlTotalSize();
            done += object->dlDownloadSize();
            speed += object->dlSpeed();
        }
    }
    const auto number = [](double value) { return QString::number(static_cast<quint64>(value)); };
    tell(tr("download speed:%1Kb/s<br/>").arg(number(double(qMax(speed, quint64(1))) / 1024)) %
             tr("download size:%2M<br/>").arg(number(double(done) / bytesPerMiB)) %
             tr("file total size:%3M<br/>").arg(number(double(total) / bytesPerMiB)) %
             tr("<extern>please be patient, you can play all server once updated</extern>"),
         GetCheckUpdateProgress() + GetDownLoadProgress(done));
}

/// The task that sent the signal, if it works for @p instance.
DeployTask *MinecraftLaunchStep::signallingTask(MCInstanceObj &instance) const
{
    auto *task = qobject_cast<DeployTask *>(m_source);
    if (!task)
        return nullptr;
    const quint64 expected = instance.instanceId();
    if (task->getDeployTaskId() == expected)
        return task;
    Log::debug(QStringLiteral("signals filter, deploy instance id is %1 and expected instance id "
                              "is %2.")
                   .arg(task->getDeployTaskId())
                   .arg(expected));
    return nullptr;
}

void MinecraftLaunchStep::onTaskExtractProgress(quint64 bytesUnZip, quint64 bytesTotal)
{
    const auto instance = m_instance.lock();
    if (!m_manager || !instance || !signallingTask(*instance) || !isRunning())
        return;
    const double percent = bytesTotal > 0 ? double(bytesUnZip) * 100 / double(bytesTotal) : 0;
    tell(tr("left file number: %1<br/>").arg(m_deployingRes.size()) %
             tr("extracting files: %1%...").arg(static_cast<quint64>(percent)),
         downloadedPercent + GetExtractProgress(m_deployedBytes));
}

void MinecraftLaunchStep::onTaskExtractFinished()
{
    const auto instance = m_instance.lock();
    DeployTask *task = instance ? signallingTask(*instance) : nullptr;
    if (!task)
        return;
    const bool isGood = task->successful();
    forgetDeployTask(*task);
    if (!isGood) {
        failWith(ErrDeployFailed, tr("deploy failed"));
    } else if (m_deployingRes.empty() && m_updatingRes.empty() && isRunning()) {
        succeed();
    }
}

void MinecraftLaunchStep::forgetDeployTask(DeployTask &task)
{
    const ResKey key = task.getDeployResKey();
    if (m_deployingRes.erase(key) > 0) {
        m_deployedRes.insert(key);
        // Its size does not change any more, so the sum needs no second look at the others.
        if (const auto object = knownRes(key))
            m_deployedBytes += object->dlTotalSize();
    }
    m_deployTasks.remove(key);
    m_startedTasks.remove(&task);
    task.deleteLater();
}

void MinecraftLaunchStep::takeBackWaitingDeployments()
{
    for (DeployTask *task : qAsConst(m_deployTasks)) {
        if (QThreadPool::globalInstance()->tryTake(task))
            m_startedTasks.remove(task);
    }
}

void MinecraftLaunchStep::advance(quint32 percent)
{
    m_percent = qMax(m_percent, percent);
    setCurProgress(m_percent, 100);
}

quint32 MinecraftLaunchStep::GetCheckUpdateProgress()
{
    return 5;
}

quint32 MinecraftLaunchStep::GetDownLoadProgress(quint64 bytes)
{
    return logarithmicShare(bytes, 80, 8.0);
}

quint32 MinecraftLaunchStep::GetExtractProgress(quint64 bytes)
{
    return logarithmicShare(bytes, 15, 1.5);
}
