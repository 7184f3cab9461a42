#include "platform/FileLock.h"

#include <windows.h>

#include "platform/win32/Handle.h"
#include "platform/win32/NativePath.h"

namespace platform {

/// The system takes the file away with its handle.
struct FileLock::Hold
{
    explicit Hold(Handle handle) : file(std::move(handle)) {}

    Handle file;
};

FileLock::FileLock(std::unique_ptr<Hold> hold) : m_hold(std::move(hold)) {}

FileLock::~FileLock() = default;

std::unique_ptr<FileLock> FileLock::tryTake(const QString &absolutePath)
{
    Handle file(CreateFileW(nativePath(absolutePath).c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                            OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE,
                            nullptr));
    if (!file.isValid())
        return nullptr;
    return std::unique_ptr<FileLock>(new FileLock(std::make_unique<Hold>(std::move(file))));
}

} // namespace platform
