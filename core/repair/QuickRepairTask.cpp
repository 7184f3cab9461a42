#include "core/repair/QuickRepairTask.h"

QuickRepairTask::QuickRepairTask(QObject *parent) : TaskAbstract(parent) {}

QuickRepairTask::~QuickRepairTask() = default;

void QuickRepairTask::AppendRepairTask(std::shared_ptr<TaskAbstract> task)
{
    if (!task) {
        qWarning("launch task have not been created, null object.");
        return;
    }
    m_steps.append(task);

    TaskAbstract *const step = task.get();
    QObject::disconnect(step, nullptr, nullptr, nullptr);
    connect(step, &TaskAbstract::finished, this, &QuickRepairTask::onOneTaskFinished);
    connect(step, &TaskAbstract::status, this, &TaskAbstract::setStatus);
    connect(step, &TaskAbstract::failed, this, &TaskAbstract::failed);
    connect(step, &TaskAbstract::taskBrief, this, &TaskAbstract::setTaskBrief);
}

bool QuickRepairTask::canAbort() const
{
    const bool isAnyRunning = m_current < static_cast<unsigned int>(m_steps.size());
    return !isAnyRunning || m_steps.at(static_cast<int>(m_current))->canAbort();
}

void QuickRepairTask::onTaskRun()
{
    if (m_steps.isEmpty())
        emitSucceeded();
    else
        onOneTaskFinished();
}

void QuickRepairTask::onOneTaskFinished()
{
    if (m_current == beforeTheFirst) {
        m_current = 0;
        startCurrent();
        return;
    }
    const TaskAbstract &step = *m_steps.at(static_cast<int>(m_current));
    if (!step.successful()) {
        emitFailed(step.failReason());
    } else if (m_current + 1 == static_cast<unsigned int>(m_steps.size())) {
        emitSucceeded();
    } else {
        ++m_current;
        startCurrent();
    }
}

void QuickRepairTask::startCurrent()
{
    // Kept alive on its own: a listener of its end may delete this task before start() returns.
    const std::shared_ptr<TaskAbstract> step = m_steps.at(static_cast<int>(m_current));
    step->start();
}
