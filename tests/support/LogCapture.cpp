#include "tests/support/LogCapture.h"

#include <QMutexLocker>

static LogCapture *current = nullptr;

LogCapture::LogCapture()
{
    current = this;
    m_previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
            const QMutexLocker lock(&current->m_mutex);
            current->m_messages.append(qMakePair(type, text));
        });
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
}

QStringList LogCapture::lines() const
{
    const QMutexLocker lock(&m_mutex);
    QStringList lines;
    for (const auto &message : m_messages)
        lines << message.second;
    return lines;
}

bool LogCapture::has(QtMsgType type, const QString &line) const
{
    const QMutexLocker lock(&m_mutex);
    return m_messages.contains(qMakePair(type, line));
}
