#include "core/launch/WaitMcClientInitialized.h"

#include "platform/OtherProcesses.h"

WaitMcClientInitialized::WaitMcClientInitialized(QObject *parent) : QThread(parent) {}

WaitMcClientInitialized::~WaitMcClientInitialized()
{
    requestInterruption();
    wait();
}

void WaitMcClientInitialized::setProcessId(qint64 processId)
{
    m_processId = processId;
}

void WaitMcClientInitialized::setWindowTitle(const QString &title)
{
    m_windowTitle = title;
}

bool WaitMcClientInitialized::hasGameEnded() const
{
    return m_gameEnded;
}

void WaitMcClientInitialized::run()
{
    using platform::OtherProcesses;
    const OtherProcesses &processes = OtherProcesses::current();
    const auto outcome = processes.waitForInput(m_processId);
    m_gameEnded = outcome == OtherProcesses::InputWait::Ended;
    if (outcome == OtherProcesses::InputWait::Ready && !m_windowTitle.isEmpty())
        processes.setWindowTitle(m_processId, m_windowTitle);
}
