#pragma once

#include <memory>

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// A file that has one holder at a time, in this process or another. The hold ends with the object
/// or with the process, however that ends. The object takes the file away at its end; a killed
/// process may leave it behind, free to be taken.
class RIVETPLATFORM_EXPORT FileLock
{
public:
    /// Makes the file if it is missing. Null if somebody else has it or there can be none; does not
    /// wait.
    static std::unique_ptr<FileLock> tryTake(const QString &absolutePath);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

private:
    struct Hold;
    explicit FileLock(std::unique_ptr<Hold> hold);

    const std::unique_ptr<Hold> m_hold;
};

} // namespace platform
