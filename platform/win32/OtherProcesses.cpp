#include "platform/OtherProcesses.h"

#include <windows.h>

#include <QThread>

#include "platform/win32/Handle.h"

namespace platform {

namespace {

/// Waiting goes in slices, so that the end of the process and an interruption are seen between.
constexpr DWORD sliceMs = 100;

Handle openProcess(DWORD rights, qint64 processId)
{
    return Handle(OpenProcess(rights, FALSE, static_cast<DWORD>(processId)));
}

struct WindowSearch
{
    DWORD processId;
    HWND found = nullptr;
};

/// Stops the enumeration at the first window of the process.
BOOL CALLBACK onWindow(HWND window, LPARAM parameter)
{
    auto *const search = reinterpret_cast<WindowSearch *>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search->processId)
        return TRUE;
    search->found = window;
    return FALSE;
}

class WindowsProcesses final : public OtherProcesses
{
public:
    std::optional<quint32> end(qint64 processId) const override
    {
        const Handle process = openProcess(PROCESS_TERMINATE, processId);
        if (!process.isValid())
            return GetLastError();
        // Fails only for a process that is ending anyway.
        TerminateProcess(process.get(), 0);
        return std::nullopt;
    }

    InputWait waitForInput(qint64 processId) const override
    {
        const Handle process = openProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, processId);
        if (!process.isValid())
            return InputWait::GaveUp;
        DWORD result = WAIT_TIMEOUT;
        while (result == WAIT_TIMEOUT && !QThread::currentThread()->isInterruptionRequested()) {
            result = WaitForInputIdle(process.get(), sliceMs);
            if (WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0)
                return InputWait::Ended;
        }
        return result == 0 ? InputWait::Ready : InputWait::GaveUp;
    }

    bool setWindowTitle(qint64 processId, const QString &title) const override
    {
        WindowSearch search{static_cast<DWORD>(processId)};
        EnumWindows(onWindow, reinterpret_cast<LPARAM>(&search));
        return search.found &&
               SetWindowTextW(search.found, reinterpret_cast<const wchar_t *>(title.utf16()));
    }
};

} // namespace

const OtherProcesses &OtherProcesses::ofSystem()
{
    static const WindowsProcesses processes;
    return processes;
}

} // namespace platform
