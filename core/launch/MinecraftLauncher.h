#pragma once

#include <memory>

#include <QList>

#include "core/launch/GameLaunchBase.h"

/// Runs launch tasks one after another and reports them as one task.
///
/// Main thread only. Shares ownership of its tasks, so they outlive their own end. Ends with
/// finished(), once: after the last task succeeded, or after the first that failed. A task's
/// failure is heard twice: its own failed() is passed on at once, and the chain's own comes before
/// finished(). Status and brief texts and errors of the tasks come out of the chain's signals; its
/// progress is out of 100.
class RIVETCORE_EXPORT MinecraftLauncher : public GameLaunchBase
{
    Q_OBJECT
public:
    explicit MinecraftLauncher(QObject *parent = nullptr);
    ~MinecraftLauncher() override;

    /// Appends @p task behind the others. @p weight is its share of the progress bar, relative to
    /// the other weights; the shares are worked out when the chain starts. Drops all connections of
    /// the task, so connect to the task itself after this. A null task is logged and left out.
    void AppendLanuchTask(std::shared_ptr<GameLaunchBase> task, quint16 weight);

    /// Lets the chain, with the tasks that it holds, run again from the first.
    void Reset();

    /// The running task's answer; true before the first task.
    bool canAbort() const override;

public Q_SLOTS:
    /// Aborts the running task and returns its answer; true when there is none to abort.
    bool abort() override;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    /// Starts the first task, or goes on from the end of the current one.
    void onOneTaskFinished();

private:
    GameLaunchBase *currentTask() const;
    void workOutShares();
    void startCurrent();
    void onTaskProgress(quint64 current, quint64 total);

    QList<std::shared_ptr<GameLaunchBase>> m_tasks;
    QList<quint16> m_weights; ///< in per cent of the whole once the chain runs
    bool m_hasShares = false; ///< false too when all weights are 0: then no task moves the bar
    int m_current = -1;       ///< index of the running task; -1 before the first
};
