#include "support/coresupport/TaskAbstract.h"

#include <QMutexLocker>
#include <QPointer>

TaskAbstract::TaskAbstract(QObject *parent) : QObject(parent) {}

TaskAbstract::~TaskAbstract() = default;

bool TaskAbstract::isRunning() const
{
    return state() == State::Running;
}

bool TaskAbstract::isFinished() const
{
    const State now = state();
    return now == State::Succeeded || now == State::Failed;
}

bool TaskAbstract::successful() const
{
    return state() == State::Succeeded;
}

QString TaskAbstract::failReason() const
{
    const QMutexLocker lock(&m_mutex);
    return m_failReason;
}

bool TaskAbstract::canAbort() const
{
    return false;
}

void TaskAbstract::start()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_state = State::Running;
        m_failReason.clear();
    }
    onTaskRun();
}

bool TaskAbstract::abort()
{
    return false;
}

void TaskAbstract::setStatus(const QString &text)
{
    Q_EMIT status(text);
}

void TaskAbstract::setTaskBrief(const QString &text)
{
    Q_EMIT taskBrief(text);
}

void TaskAbstract::setCurProgress(quint64 current, quint64 total)
{
    Q_EMIT progress(current, total);
}

void TaskAbstract::emitSucceeded()
{
    if (recordEnd(State::Succeeded, QString()))
        Q_EMIT finished();
}

void TaskAbstract::emitFailed(QString reason)
{
    const bool isEnd = recordEnd(State::Failed, reason);
    const QPointer<TaskAbstract> self(this);
    Q_EMIT failed(reason);
    // A slot on failed() may have deleted the task.
    if (isEnd && self)
        Q_EMIT finished();
}

TaskAbstract::State TaskAbstract::state() const
{
    const QMutexLocker lock(&m_mutex);
    return m_state;
}

bool TaskAbstract::recordEnd(State outcome, const QString &reason)
{
    const QMutexLocker lock(&m_mutex);
    if (m_state == State::Succeeded || m_state == State::Failed)
        return false;
    m_state = outcome;
    m_failReason = reason;
    return true;
}
