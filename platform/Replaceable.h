#pragma once

#include <atomic>

/// Holds the one implementation of a platform interface that is in force: the system's own, or
/// the one that a test put in its place. Safe from any thread; owns nothing.
template <typename Interface>
class Replaceable
{
public:
    explicit Replaceable(Interface &system) : m_system(system), m_current(&system) {}

    Interface &current() const { return *m_current.load(std::memory_order_acquire); }

    /// Puts @p other in force; null brings the system's own back.
    void replace(Interface *other)
    {
        m_current.store(other ? other : &m_system, std::memory_order_release);
    }

private:
    Interface &m_system;
    std::atomic<Interface *> m_current;
};
