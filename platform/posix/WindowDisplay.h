#pragma once

#include <memory>

#include <QString>

namespace platform {

/// The top-level windows of all processes, as the X server knows them. Used by one thread.
class WindowDisplay
{
public:
    /// Null where there is no display, or where the build has no X11.
    static std::unique_ptr<WindowDisplay> open();

    virtual ~WindowDisplay() = default;

    /// True once a window of the process, told by _NET_WM_PID, is visible.
    virtual bool hasWindow(qint64 processId) const = 0;

    /// Writes _NET_WM_NAME of that window; false without one.
    virtual bool setTitle(qint64 processId, const QString &title) const = 0;
};

} // namespace platform
