#include "tests/support/GameSystem.h"

#include <windows.h>

static HWND window = nullptr;

void GameSystem::openWindow()
{
    window = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 99, 99,
                             nullptr, nullptr, nullptr, nullptr);
}

QString GameSystem::windowTitle()
{
    // A process counts as ready for input once it has waited for some.
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    wchar_t text[99] = {};
    return QString::fromWCharArray(text, GetWindowTextW(window, text, 99));
}

void GameSystem::crash()
{
    TerminateProcess(GetCurrentProcess(), 0xC0000005);
}
