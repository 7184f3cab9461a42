#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Collects the log lines of all threads for as long as it lives; they do not reach the terminal.
/// One at a time.
class LogCapture
{
public:
    LogCapture()
    {
        s_current = this;
        m_previous = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext &, const QString &text) {
                const QMutexLocker lock(&s_current->m_mutex);
                s_current->m_types << type;
                s_current->m_lines << text;
            });
    }
    ~LogCapture() { qInstallMessageHandler(m_previous); }

    QStringList lines() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_lines;
    }
    /// True if @p line was logged, as a whole, at the level @p type.
    bool has(QtMsgType type, const QString &line) const
    {
        const QMutexLocker lock(&m_mutex);
        for (int i = 0; i < m_lines.size(); ++i) {
            if (m_types.at(i) == type && m_lines.at(i) == line)
                return true;
        }
        return false;
    }

private:
    static inline LogCapture *s_current = nullptr;
    mutable QMutex m_mutex;
    QList<QtMsgType> m_types;
    QStringList m_lines;
    QtMessageHandler m_previous;
};
