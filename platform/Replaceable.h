#pragma once

#include <atomic>

/// Holds the one implementation of a platform interface that is in force: the system's own, or
/// the one that a test put in its place. Safe from any thread; owns nothing.
///
/// Used in the .cpp file of the interface only: a template that is compiled into two libraries
/// would make two holders.
template <typename Interface>
class Replaceable
{
public:
    /// The one holder; @p system, the same in each call, is in force at first.
    static Replaceable &over(Interface &system)
    {
        static Replaceable holder(system);
        return holder;
    }

    Interface &current() const { return *m_current.load(std::memory_order_acquire); }

    /// Puts @p other in force; null brings the system's own back.
    void replace(Interface *other)
    {
        m_current.store(other ? other : &m_system, std::memory_order_release);
    }

private:
    explicit Replaceable(Interface &system) : m_system(system), m_current(&system) {}

    Interface &m_system;
    std::atomic<Interface *> m_current;
};
