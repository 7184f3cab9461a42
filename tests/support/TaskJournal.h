#pragma once

#include <QStringList>

#include "support/coresupport/TaskAbstract.h"

/// Writes down the signals of a task as they arrive on this object's thread, each as a short text
/// such as "status x", "3/10", "failed why", "finished 0 why".
class TaskJournal : public QObject
{
    Q_OBJECT
public:
    /// Connects by name, as hosts written with the string forms of connect() do.
    explicit TaskJournal(TaskAbstract &task) : m_task(task)
    {
        connect(&task, SIGNAL(status(QString)), SLOT(onStatus(QString)));
        connect(&task, SIGNAL(taskBrief(QString)), SLOT(onBrief(QString)));
        connect(&task, SIGNAL(failed(QString)), SLOT(onFailed(QString)));
        connect(&task, SIGNAL(finished()), SLOT(onFinished()));
        connect(&task, SIGNAL(progress(quint64, quint64)), SLOT(onProgress(quint64, quint64)));
    }

    /// What has come since the last call, joined by ", ".
    QString story() { return std::exchange(lines, {}).join(", "); }

    QStringList lines;

private Q_SLOTS:
    void onStatus(const QString &text) { lines << "status " + text; }
    void onBrief(const QString &text) { lines << "brief " + text; }
    void onFailed(const QString &reason) { lines << "failed " + reason; }
    void onProgress(quint64 now, quint64 all) { lines << QString("%1/%2").arg(now).arg(all); }
    void onFinished()
    {
        lines << QString("finished %1 %2").arg(m_task.successful()).arg(m_task.failReason());
    }

private:
    TaskAbstract &m_task;
};
