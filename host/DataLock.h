#pragma once

#include <memory>
#include <optional>

#include "platform/FileLock.h"

/// Keeps launches and repairs of one user apart, whatever process they run in: any number of
/// launches, or one repair. A hold ends with its process, however that ends; a game that outlives
/// its launcher is not seen.
class DataLock
{
public:
    /// Nothing while a repair runs. Blocks for some hundred milliseconds before it says so.
    static std::optional<DataLock> forLaunch();

    /// Nothing while a launch or another repair runs.
    static std::optional<DataLock> forRepair();

private:
    explicit DataLock(std::unique_ptr<platform::FileLock> lock) : m_lock(std::move(lock)) {}

    std::unique_ptr<platform::FileLock> m_lock;
};
