#include "platform/Terminal.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace platform::Terminal {

namespace {

constexpr std::array<int, 3> endSignals = {SIGINT, SIGTERM, SIGHUP};

std::atomic<void (*)()> endHandler{nullptr};
volatile std::sig_atomic_t endedBy = 0;

extern "C" void onEnd(int)
{
    if (const auto handler = endHandler.load())
        handler();
}

extern "C" void onEndAsked(int signal)
{
    endedBy = signal;
}

/// Lets an interrupt end the read, and happen when the terminal is as it was.
class LateInterrupts
{
public:
    LateInterrupts()
    {
        endedBy = 0;
        struct sigaction action = {};
        action.sa_handler = &onEndAsked; // without SA_RESTART
        for (std::size_t i = 0; i < endSignals.size(); ++i)
            sigaction(endSignals[i], &action, &m_before[i]);
    }
    ~LateInterrupts()
    {
        for (std::size_t i = 0; i < endSignals.size(); ++i)
            sigaction(endSignals[i], &m_before[i], nullptr);
        if (endedBy != 0)
            std::raise(endedBy);
    }
    Q_DISABLE_COPY_MOVE(LateInterrupts)

private:
    std::array<struct sigaction, endSignals.size()> m_before = {};
};

enum class Typing {
    Shown,
    Hidden,
};

std::optional<QString> ask(const QString &prompt, Typing typing)
{
    termios before{};
    if (tcgetattr(STDIN_FILENO, &before) != 0)
        return std::nullopt;
    const LateInterrupts late;
    termios during = before;
    if (typing == Typing::Hidden)
        during.c_lflag &= ~tcflag_t(ECHO);
    std::fputs(qUtf8Printable(prompt), stderr);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &during);
    std::string line;
    const bool isRead = bool(std::getline(std::cin, line));
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    if (!isRead || typing == Typing::Hidden)
        std::fputs("\n", stderr);
    return isRead ? std::optional<QString>(QString::fromStdString(line)) : std::nullopt;
}

} // namespace

bool isInteractive()
{
    return isatty(STDOUT_FILENO) == 1;
}

void prepare() {}

void watchEnd(void (*handler)())
{
    endHandler = handler;
    for (const int signal : endSignals)
        std::signal(signal, &onEnd);
}

int columns()
{
    winsize size{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : 80;
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
