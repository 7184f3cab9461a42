#include "platform/FileEntry.h"

#include <windows.h>

#include "platform/win32/NativePath.h"

namespace platform {

namespace {

/// True for symbolic links and junctions. Other reparse points, such as the place-holders of cloud
/// folders, stand for the file itself.
bool isLink(const std::wstring &name)
{
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(name.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

bool isGone(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// A folder counts as not empty for as long as somebody has a deleted file of it open.
bool isPassing(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_ACCESS_DENIED || error == ERROR_DIR_NOT_EMPTY;
}

} // namespace

EntryKind entryKind(const QString &path)
{
    const std::wstring name = nativePath(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return isGone(GetLastError()) ? EntryKind::Missing : EntryKind::File;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && isLink(name))
        return EntryKind::Link;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? EntryKind::Directory : EntryKind::File;
}

RemovalAttempt removeEntry(const QString &path, EntryKind)
{
    const std::wstring name = nativePath(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES && isGone(GetLastError()))
        return {true, false, {}};
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
        SetFileAttributesW(name.c_str(), attributes & ~DWORD(FILE_ATTRIBUTE_READONLY));
    // Junctions and links to folders are removed as folders; neither call follows them.
    const bool isFolder =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    if (isFolder ? RemoveDirectoryW(name.c_str()) : DeleteFileW(name.c_str()))
        return {true, false, {}};
    const DWORD error = GetLastError();
    if (isGone(error))
        return {true, false, {}};
    return {false, isPassing(error), qt_error_string(static_cast<int>(error))};
}

RenameOutcome renameEntry(const QString &from, const QString &to)
{
    if (MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(), 0))
        return RenameOutcome::Renamed;
    return GetLastError() == ERROR_NOT_SAME_DEVICE ? RenameOutcome::OtherFileSystem
                                                   : RenameOutcome::Failed;
}

void openForRemoval(const QString &)
{
    // The write protection of a folder does not keep its entries here.
}

QString comparableName(const QString &path)
{
    return path.toCaseFolded();
}

} // namespace platform
