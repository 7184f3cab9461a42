#pragma once

#include <optional>

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// What the core does to a process that it has started. Any thread.
///
/// Tests install an implementation of their own; the product always uses the system's.
class RIVETPLATFORM_EXPORT OtherProcesses
{
public:
    /// How waiting for a process has ended.
    enum class InputWait {
        Ready,  ///< it can take input; also where no display could show that
        Ended,  ///< it ended before
        GaveUp, ///< it could not be asked, took too long, or the waiting thread was interrupted
    };

    virtual ~OtherProcesses();

    /// Ends the process at once: on Windows with exit code 0, on POSIX by SIGKILL. Does not wait
    /// for its end. Nothing if the request was placed, else the system's error number.
    [[nodiscard]] virtual std::optional<quint32> end(qint64 processId) const = 0;

    /// Blocks until the process can take input. On POSIX that is its first mapped top-level window
    /// on the X11 display, for which it waits 30 s. Call it on a QThread: the interruption of that
    /// thread ends it within a fraction of a second.
    [[nodiscard]] virtual InputWait waitForInput(qint64 processId) const = 0;

    /// Gives the first top-level window of the process a title. False if it has none.
    virtual bool setWindowTitle(qint64 processId, const QString &title) const = 0;

    static const OtherProcesses &current();

    /// Puts @p other in the place of the system; null brings the system back. Not owned.
    static void replace(const OtherProcesses *other);

private:
    /// One implementation for each system.
    static const OtherProcesses &ofSystem();
};

} // namespace platform
