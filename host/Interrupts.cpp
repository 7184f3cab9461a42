#include "host/Interrupts.h"

#include <atomic>
#include <cstdlib>

#include "host/Commands.h"
#include "platform/Terminal.h"

namespace {

// Without locks, and so fit for a signal handler.
std::atomic<int> interrupts{0};
std::atomic<bool> isGuarded{false};

void onInterrupt()
{
    if (++interrupts > 1 && !isGuarded)
        std::_Exit(ExitCancelled);
}

} // namespace

void Interrupts::watch()
{
    platform::Terminal::watchEnd(&onInterrupt);
}

int Interrupts::count()
{
    return interrupts;
}

void Interrupts::setGuarded(bool is)
{
    isGuarded = is;
}
