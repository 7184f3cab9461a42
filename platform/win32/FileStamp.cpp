#include "platform/FileStamp.h"

#include <windows.h>

#include "platform/win32/NativePath.h"

namespace platform {

QByteArray fileStamp(const QString &path)
{
    WIN32_FILE_ATTRIBUTE_DATA file{};
    if (!GetFileAttributesExW(nativePath(path).c_str(), GetFileExInfoStandard, &file))
        return {};
    const DWORD parts[] = {file.nFileSizeHigh,
                           file.nFileSizeLow,
                           file.ftCreationTime.dwHighDateTime,
                           file.ftCreationTime.dwLowDateTime,
                           file.ftLastWriteTime.dwHighDateTime,
                           file.ftLastWriteTime.dwLowDateTime};
    return QByteArray(reinterpret_cast<const char *>(parts), sizeof parts);
}

} // namespace platform
