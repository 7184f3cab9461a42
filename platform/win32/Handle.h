#pragma once

#include <windows.h>

#include <utility>

namespace platform {

/// Owns one handle of the system and closes it.
class Handle
{
public:
    Handle() = default;
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(Handle &&other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Handle &operator=(Handle &&other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle()
    {
        if (isValid())
            CloseHandle(m_handle);
    }

    /// Calls that open something tell a failure by either of two values.
    bool isValid() const { return m_handle && m_handle != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return m_handle; }

private:
    HANDLE m_handle = nullptr;
};

} // namespace platform
