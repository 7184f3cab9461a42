#pragma once

#include <memory>

#include <QList>

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// Runs repair steps one after another and reports them as one task.
///
/// Main thread only, and for one run. Shares ownership of its steps. Ends with finished(), once:
/// after the last step succeeded, or after the first that failed; no later one starts then. The
/// failure of a step is heard twice: its own failed() is passed on at once, and that of this task
/// comes before finished().
class RIVETCORE_EXPORT QuickRepairTask : public TaskAbstract
{
    Q_OBJECT
public:
    explicit QuickRepairTask(QObject *parent = nullptr);
    ~QuickRepairTask() override;

    /// Appends @p task behind the others; before start() only. Drops all connections of the step,
    /// so connect to the step itself after this. A null step is logged and left out.
    void AppendRepairTask(std::shared_ptr<TaskAbstract> task);

    /// The running step's answer; true before the first.
    bool canAbort() const override;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    /// Starts the first step, or goes on from the end of the current one.
    void onOneTaskFinished();

private:
    static constexpr unsigned int beforeTheFirst = 0xFFFFFFFF;

    void startCurrent();

    QList<std::shared_ptr<TaskAbstract>> m_steps;
    unsigned int m_current = beforeTheFirst; ///< index of the running step
};
