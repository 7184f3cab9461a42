#include "platform/OtherProcesses.h"

#include <cerrno>
#include <csignal>
#include <sys/wait.h>

#include <QDeadlineTimer>
#include <QThread>

#include "platform/posix/WindowDisplay.h"

namespace platform {

namespace {

constexpr int patienceMs = 30000;
constexpr unsigned long pauseMs = 50;

/// A child that nobody has reaped yet has ended all the same; it is left to its parent's reaper.
bool hasEnded(pid_t id)
{
    siginfo_t info{};
    if (waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOHANG | WNOWAIT) == 0)
        return info.si_pid == id;
    return kill(id, 0) != 0 && errno == ESRCH;
}

class PosixProcesses final : public OtherProcesses
{
public:
    std::optional<quint32> end(qint64 processId) const override
    {
        // Ids from 0 downwards mean whole groups of processes, ours among them.
        if (processId <= 0)
            return ESRCH;
        if (kill(static_cast<pid_t>(processId), SIGKILL) != 0)
            return static_cast<quint32>(errno);
        return std::nullopt;
    }

    InputWait waitForInput(qint64 processId) const override
    {
        const auto display = WindowDisplay::open();
        if (!display)
            return InputWait::Ready;
        const QDeadlineTimer deadline(patienceMs);
        while (!hasEnded(static_cast<pid_t>(processId))) {
            if (display->hasWindow(processId))
                return InputWait::Ready;
            if (deadline.hasExpired() || QThread::currentThread()->isInterruptionRequested())
                return InputWait::GaveUp;
            QThread::msleep(pauseMs);
        }
        return InputWait::Ended;
    }

    bool setWindowTitle(qint64 processId, const QString &title) const override
    {
        const auto display = WindowDisplay::open();
        return display && display->setTitle(processId, title);
    }
};

} // namespace

const OtherProcesses &OtherProcesses::ofSystem()
{
    static const PosixProcesses processes;
    return processes;
}

} // namespace platform
