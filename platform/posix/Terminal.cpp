#include "platform/Terminal.h"

#include <cstdio>
#include <iostream>
#include <string>

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace platform::Terminal {

bool isInteractive()
{
    return isatty(STDOUT_FILENO) == 1;
}

void prepare() {}

int columns()
{
    winsize size{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : 80;
}

std::optional<QString> readSecret(const QString &prompt)
{
    termios before{};
    if (tcgetattr(STDIN_FILENO, &before) != 0)
        return std::nullopt;
    termios silent = before;
    silent.c_lflag &= ~tcflag_t(ECHO);
    std::fputs(qUtf8Printable(prompt), stderr);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    std::string line;
    std::getline(std::cin, line);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    std::fputs("\n", stderr);
    return QString::fromStdString(line);
}

} // namespace platform::Terminal
