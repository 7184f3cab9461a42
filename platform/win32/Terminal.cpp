#include "platform/Terminal.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include <windows.h>

namespace platform::Terminal {

namespace {

std::atomic<void (*)()> endHandler{nullptr};
UINT formerCodePage = 0;

HANDLE output()
{
    return GetStdHandle(STD_OUTPUT_HANDLE);
}

/// Where the console goes, the system ends the program when this returns, or after some seconds.
BOOL WINAPI onEnd(DWORD event)
{
    endHandler.load()();
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

enum class Typing {
    Shown,
    Hidden,
};

std::optional<QString> ask(const QString &prompt, Typing typing)
{
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD before = 0;
    if (!GetConsoleMode(input, &before))
        return std::nullopt;
    std::fputs(qUtf8Printable(prompt), stderr);
    if (typing == Typing::Hidden)
        SetConsoleMode(input, before & ~DWORD(ENABLE_ECHO_INPUT));
    wchar_t line[512];
    DWORD length = 0;
    // An interrupt ends it with success and not even the end of a line.
    const bool isRead = ReadConsoleW(input, line, 512, &length, nullptr) != 0 && length > 0;
    SetConsoleMode(input, before);
    if (!isRead || typing == Typing::Hidden)
        std::fputs("\n", stderr);
    if (!isRead)
        return std::nullopt;
    while (length > 0 && (line[length - 1] == L'\n' || line[length - 1] == L'\r'))
        --length;
    return QString::fromWCharArray(line, int(length));
}

} // namespace

bool isInteractive()
{
    DWORD mode = 0;
    return GetConsoleMode(output(), &mode) != 0;
}

void prepare()
{
    formerCodePage = GetConsoleOutputCP();
    if (SetConsoleOutputCP(CP_UTF8))
        std::atexit([] { SetConsoleOutputCP(formerCodePage); });
    DWORD mode = 0;
    // 4: sequences that move the cursor, which Windows knows since version 10.
    if (GetConsoleMode(output(), &mode))
        SetConsoleMode(output(), mode | 4);
}

void watchEnd(void (*handler)())
{
    if (!endHandler.exchange(handler))
        SetConsoleCtrlHandler(&onEnd, TRUE);
}

int columns()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    return GetConsoleScreenBufferInfo(output(), &info) ? info.dwSize.X : 80;
}

std::optional<QString> readLine(const QString &prompt)
{
    return ask(prompt, Typing::Shown);
}

std::optional<QString> readSecret(const QString &prompt)
{
    return ask(prompt, Typing::Hidden);
}

} // namespace platform::Terminal
