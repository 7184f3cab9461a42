#pragma once

#include <QMutex>
#include <QObject>
#include <QString>

#include "support/coresupport/CoreSupportExport.h"

/// One unit of asynchronous work that is running, has succeeded, or has failed with a reason.
///
/// Lives on the thread that made it; its owner deletes it. start() calls onTaskRun() at once on the
/// caller's thread; the task ends when it calls emitSucceeded() or emitFailed(), there or later.
/// It ends exactly once per run: what is recorded first stands, and finished() goes out once. It
/// may be started again after its end, and deleted by a slot on its own finished(); a slot on
/// failed() may delete it too when the task ends on that slot's thread.
///
/// The queries, the slots and the two emit functions may be called from any thread; receivers on
/// another thread get the signals queued, in order.
class CORESUPPORT_EXPORT TaskAbstract : public QObject
{
    Q_OBJECT
public:
    explicit TaskAbstract(QObject *parent = nullptr);
    ~TaskAbstract() override;

    virtual bool isRunning() const;
    virtual bool isFinished() const;
    virtual bool successful() const;
    /// The reason given to emitFailed() in this run; empty otherwise.
    virtual QString failReason() const;
    /// False here: a task that can be aborted says so itself.
    virtual bool canAbort() const;

    virtual void start();

public Q_SLOTS:
    /// Ends the work early; false here, for there is nothing that could be ended.
    virtual bool abort();

    /// The long line shown to the user.
    void setStatus(const QString &text);
    /// The short title of the current stage.
    void setTaskBrief(const QString &text);
    /// The unit is the task's own: per cent, bytes, files.
    void setCurProgress(quint64 current, quint64 total);

Q_SIGNALS:
    void status(QString text);
    void taskBrief(QString text);
    void progress(quint64 current, quint64 total);
    /// Comes before finished(). A failure after the end of the run, such as the crash of a game
    /// that had started well, comes as this signal alone.
    void failed(QString reason);
    /// The last signal of a run. successful() and failReason() hold the outcome by then.
    void finished();

protected:
    /// The work. Every way through it ends the task or leaves something pending that will.
    virtual void onTaskRun() = 0;
    /// Records success and emits finished(); nothing after the end of the run.
    virtual void emitSucceeded();
    /// Records @p reason and emits failed() and finished(); after the end of the run failed()
    /// alone.
    virtual void emitFailed(QString reason);

private:
    enum class State { Idle, Running, Succeeded, Failed };

    State state() const;
    /// True if this call ended the run.
    bool recordEnd(State outcome, const QString &reason);

    mutable QMutex m_mutex; ///< guards what follows
    State m_state = State::Idle;
    QString m_failReason;
};
