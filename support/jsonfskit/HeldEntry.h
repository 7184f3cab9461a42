#pragma once

#include <chrono>

#include <QElapsedTimer>
#include <QThread>

/// What is done with an entry that somebody, such as a virus scanner, holds for a moment.
namespace FS {

constexpr std::chrono::milliseconds pauseWhileHeld(20);
/// A caller hears within two seconds that an entry is held for good.
constexpr std::chrono::milliseconds longestHold(1900);

/// Calls @p tryOnce, which tells whether an entry is held, again for as long as it says so. Blocks.
/// The time it waits adds up in @p waited, one purse for all entries of an operation.
template <typename TryOnce>
void tryWhileHeld(std::chrono::milliseconds &waited, TryOnce tryOnce)
{
    QElapsedTimer waiting;
    for (bool isHeld = tryOnce(); isHeld && waited < longestHold;) {
        waiting.start();
        QThread::msleep(static_cast<unsigned long>(pauseWhileHeld.count()));
        isHeld = tryOnce();
        waited += std::chrono::milliseconds(waiting.elapsed());
    }
}

} // namespace FS
