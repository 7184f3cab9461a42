#pragma once

#include <memory>

#include <QRunnable>
#include <QString>

#include "base/RivetCoreExport.h"
#include "core/deploy/IDeploymentHistory.h"
#include "support/coresupport/TaskAbstract.h"

/// What one deployment is about.
struct DTskContext
{
    QString srcFile;   ///< the downloaded file
    QString deployDir; ///< the directory to deploy into
    quint64 deployResKey = 0;
    quint64 deployTaskId = 0;              ///< the caller's own number, only passed through
    IDeploymentHistory *history = nullptr; ///< to query and fill; not owned, may be null
};

/// Puts one downloaded resource into a game directory, unless it lies there already.
///
/// Made on the main thread and run once on a pool thread, with QRunnable's auto-delete off: the
/// whole deployment happens inside run(), and the signals reach the main thread queued. The owner
/// deletes it after finished(), or takes it back from the pool first (QThreadPool::tryTake); the
/// destructor waits for a run() that is about to return.
class RIVETCORE_EXPORT DeployTask : public TaskAbstract, public QRunnable
{
    Q_OBJECT
public:
    explicit DeployTask(const DTskContext &context, QObject *parent = nullptr);
    ~DeployTask() override;

    void run() override;

    /// Blocks until no deployment of this process runs; for a history that is about to go.
    static void waitForRunning();

    quint64 getDeployResKey() const;
    quint64 getDeployTaskId() const;
    bool canAbort() const override;

public Q_SLOTS:
    /// True, and nothing happens: a deployment runs to its end.
    bool abort() override;

protected:
    void onTaskRun() override;

    /// True if nothing is to be done. Without a history the downloaded file is enough for that.
    virtual bool isDeployed();
    /// Does the work and ends the task.
    virtual void deploy() = 0;

    const DTskContext &context() const { return m_context; }
    /// The path of a file of the record, in the directory deployed into.
    QString deployedPath(const QString &fileName) const;
    /// Ends the task with @p reason, which also goes to the log.
    void fail(const QString &reason);

    /// Of the files of a record, isDeployed() looks at no more than these.
    static constexpr int mostCheckedFiles = 100;

private:
    struct Run;

    const DTskContext m_context;
    const std::shared_ptr<Run> m_run;
};
