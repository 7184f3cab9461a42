#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Collects the log lines of all threads for as long as it lives; they do not reach the terminal.
/// One at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();

    QStringList lines() const;
    /// True if @p line was logged, as a whole, at the level @p type.
    bool has(QtMsgType type, const QString &line) const;

private:
    mutable QMutex m_mutex;
    QList<QPair<QtMsgType, QString>> m_messages;
    QtMessageHandler m_previous;
};
