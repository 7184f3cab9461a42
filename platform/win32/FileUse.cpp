#include "platform/FileUse.h"

#include <windows.h>

#include "platform/win32/Handle.h"
#include "platform/win32/NativePath.h"

namespace platform {

FileUse fileUse(const QString &absolutePath)
{
    const std::wstring path = nativePath(absolutePath);
    const Handle file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.isValid())
        return FileUse::Free;
    return GetLastError() == ERROR_SHARING_VIOLATION ? FileUse::Held : FileUse::Unknown;
}

} // namespace platform
