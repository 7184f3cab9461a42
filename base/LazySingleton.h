#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

#include "base/AtExitManager.h"

/// The one object of a class, made on first use from whatever thread comes first and deleted by the
/// at-exit manager. A later at-exit manager gives a fresh object.
///
/// Call it in the .cpp file of the class only, behind a static GetInstance(): a template that is
/// compiled into two libraries would make two objects. A class with a private constructor befriends
/// LazySingleton<Type>.
template <typename Type>
class LazySingleton
{
public:
    LazySingleton() = delete;

    static Type *get()
    {
        while (true) {
            std::uintptr_t word = s_word.load(std::memory_order_acquire);
            if (word > beingMade)
                return reinterpret_cast<Type *>(word);
            // Who waits while the making fails has the next try.
            if (word == nothingYet &&
                s_word.compare_exchange_strong(word, beingMade, std::memory_order_acquire))
                return make();
            std::this_thread::yield();
        }
    }

private:
    static constexpr std::uintptr_t nothingYet = 0;
    static constexpr std::uintptr_t beingMade = 1;

    static Type *make()
    {
        Type *object = nullptr;
        try {
            object = new Type;
        } catch (...) {
            // Those who wait would wait for ever.
            s_word.store(nothingYet, std::memory_order_release);
            throw;
        }
        s_word.store(reinterpret_cast<std::uintptr_t>(object), std::memory_order_release);
        AtExitManager::RegisterCallback(&destroy, nullptr);
        return object;
    }

    /// The word keeps the pointer until the object is gone, so that a destructor that asks for its
    /// own singleton does not make a second one.
    static void destroy(void *)
    {
        delete reinterpret_cast<Type *>(s_word.load(std::memory_order_acquire));
        s_word.store(nothingYet, std::memory_order_release);
    }

    static inline std::atomic<std::uintptr_t> s_word{nothingYet};
};
