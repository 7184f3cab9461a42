#include "tests/support/LogCapture.h"

#include <QMutexLocker>

namespace {

LogCapture *current = nullptr;

} // namespace

LogCapture::LogCapture()
{
    current = this;
    m_previous = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    current = nullptr;
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

bool LogCapture::contains(const QString &part) const
{
    return !lines().filter(part).isEmpty();
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const QMutexLocker lock(&current->m_mutex);
    current->m_messages.append(qMakePair(type, text));
}
