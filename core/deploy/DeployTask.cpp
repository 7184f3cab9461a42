#include "core/deploy/DeployTask.h"

#include <atomic>

#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QReadWriteLock>
#include <QThread>

#include "support/jsonfskit/Log.h"

namespace {

/// Read by each run().
QReadWriteLock &runningLock()
{
    static QReadWriteLock lock;
    return lock;
}

} // namespace

/// Outlives the task for as long as run() has not returned.
struct DeployTask::Run
{
    QMutex mutex; ///< held by run()
    std::atomic<QThread *> thread{nullptr};
};

DeployTask::DeployTask(const DTskContext &context, QObject *parent)
    : TaskAbstract(parent), m_context(context), m_run(std::make_shared<Run>())
{
}

/// A slot on finished() may delete the task on the main thread while the pool thread is still on
/// its way out of that signal; or on the pool thread itself.
DeployTask::~DeployTask()
{
    if (m_run->thread != QThread::currentThread())
        const QMutexLocker untilReturned(&m_run->mutex);
}

void DeployTask::run()
{
    const QReadLocker running(&runningLock());
    const std::shared_ptr<Run> run = m_run;
    const QMutexLocker lock(&run->mutex);
    run->thread = QThread::currentThread();
    start();
    run->thread = nullptr;
}

void DeployTask::waitForRunning()
{
    const QWriteLocker noneRuns(&runningLock());
}

quint64 DeployTask::getDeployResKey() const
{
    return m_context.deployResKey;
}

quint64 DeployTask::getDeployTaskId() const
{
    return m_context.deployTaskId;
}

bool DeployTask::canAbort() const
{
    return true;
}

bool DeployTask::abort()
{
    return true;
}

void DeployTask::onTaskRun()
{
    if (isDeployed())
        emitSucceeded();
    else
        deploy();
}

bool DeployTask::isDeployed()
{
    const QFileInfo source(m_context.srcFile);
    if (m_context.deployDir.isEmpty() || !source.isFile())
        return false;
    if (!m_context.history)
        return true;
    DeployRecordItem record;
    if (!m_context.history->queryRecord(m_context.deployDir, m_context.deployResKey, record))
        return false;
    // In whole seconds, for more does not stand in the history's file.
    if (record.deployTime.toSecsSinceEpoch() < source.lastModified().toSecsSinceEpoch())
        return false;
    int checked = 0;
    for (auto it = record.deployFiles.keyBegin();
         it != record.deployFiles.keyEnd() && checked < mostCheckedFiles; ++it, ++checked) {
        if (!QFileInfo::exists(deployedPath(*it)))
            return false;
    }
    return true;
}

QString DeployTask::deployedPath(const QString &fileName) const
{
    return m_context.deployDir % QDir::separator() % fileName;
}

void DeployTask::fail(const QString &reason)
{
    Log::critical(reason);
    emitFailed(reason);
}
