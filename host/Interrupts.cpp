#include "host/Interrupts.h"

#include <csignal>
#include <cstdlib>

#include "host/Commands.h"

namespace {

volatile std::sig_atomic_t interrupts = 0;
volatile std::sig_atomic_t isGuarded = 0;

extern "C" void onInterrupt(int signal)
{
    std::signal(signal, &onInterrupt); // Windows forgets the handler at each call
    interrupts = interrupts + 1;
    if (interrupts > 1 && !isGuarded)
        std::_Exit(ExitCancelled);
}

} // namespace

void Interrupts::watch()
{
    std::signal(SIGINT, &onInterrupt);
    std::signal(SIGTERM, &onInterrupt);
}

int Interrupts::count()
{
    return interrupts;
}

void Interrupts::setGuarded(bool is)
{
    isGuarded = is ? 1 : 0;
}
