#pragma once

#include <mutex>
#include <vector>

#include "base/RivetCoreExport.h"

/// Owns the end of every singleton: a stack of call-backs that run, newest first, when the manager
/// goes.
///
/// Managers form a chain. A new one becomes the top one of the process, to which all registrations
/// go, and hands that place back to its predecessor at its end. Registration is safe from any
/// thread; a manager is made and destroyed on the main thread, while no other thread registers.
class RIVETCORE_EXPORT AtExitManager
{
public:
    using Callback = void (*)(void *param);

    AtExitManager();
    /// Runs what is left of its call-backs.
    ~AtExitManager();
    AtExitManager(const AtExitManager &) = delete;
    AtExitManager &operator=(const AtExitManager &) = delete;

    /// Pushes a call-back on the top manager; a call-back that runs may do so too. Without a
    /// manager the process ends with a fatal log line.
    static void RegisterCallback(Callback callback, void *param);

    /// Runs the call-backs of the top manager, newest first, until none is left.
    static void ProcessCallbacksNow();

private:
    struct Closure
    {
        Callback callback;
        void *param;
    };

    void push(const Closure &closure);
    void runAll();

    // Recursive, as a call-back runs under the lock and may register another one.
    std::recursive_mutex m_mutex;
    std::vector<Closure> m_closures;
    AtExitManager *m_previous;
};
