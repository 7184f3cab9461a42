#include "platform/FileEntry.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace platform {

namespace {

RenameOutcome failedRename()
{
    return errno == EXDEV ? RenameOutcome::OtherFileSystem : RenameOutcome::Failed;
}

/// Most file systems tell it with the name, which spares a look at each entry.
EntryKind kindOf(const std::filesystem::directory_entry &entry)
{
    std::error_code ignored;
    if (entry.is_symlink(ignored))
        return EntryKind::Link;
    return entry.is_directory(ignored) ? EntryKind::Directory : EntryKind::File;
}

} // namespace

NativePath toNative(const QString &absolutePath)
{
    return NativePath(QFile::encodeName(absolutePath).toStdString());
}

QString fromNative(const NativePath &path)
{
    return QFile::decodeName(path.c_str());
}

EntryKind entryKind(const NativePath &path)
{
    struct stat entry
    {
    };
    if (lstat(path.c_str(), &entry) != 0)
        return errno == ENOENT || errno == ENOTDIR ? EntryKind::Missing : EntryKind::File;
    if (S_ISLNK(entry.st_mode))
        return EntryKind::Link;
    return S_ISDIR(entry.st_mode) ? EntryKind::Directory : EntryKind::File;
}

FolderListing listFolder(const NativePath &path)
{
    FolderListing listing;
    std::error_code error;
    std::filesystem::directory_iterator it(path, error);
    for (; !error && it != std::filesystem::directory_iterator(); it.increment(error))
        listing.entries.push_back({it->path(), kindOf(*it)});
    if (error)
        listing.failure = qt_error_string(error.value());
    return listing;
}

RemovalAttempt removeEntry(const NativePath &path, EntryKind kind)
{
    const int result = kind == EntryKind::Directory ? rmdir(path.c_str()) : unlink(path.c_str());
    const int error = errno;
    if (result == 0 || error == ENOENT || error == ENOTDIR)
        return {true, false, {}};
    return {false, error == EBUSY || error == ETXTBSY || error == EINTR, qt_error_string(error)};
}

RenameOutcome renameEntry(const NativePath &from, const NativePath &to)
{
    int result = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
    // Some file systems can't promise to replace nothing: look first there.
    if (result != 0 && (errno == EINVAL || errno == ENOSYS) && entryKind(to) == EntryKind::Missing)
        result = std::rename(from.c_str(), to.c_str());
    if (result == 0)
        return RenameOutcome::Renamed;
    return failedRename();
}

void openForRemoval(const NativePath &path)
{
    struct stat folder
    {
    };
    if (lstat(path.c_str(), &folder) == 0 && (folder.st_mode & S_IRWXU) != S_IRWXU)
        chmod(path.c_str(), (folder.st_mode & 07777) | S_IRWXU);
}

bool isSameEntry(const NativePath &a, const NativePath &b)
{
    struct stat first
    {
    }, second{};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

QString realPath(const QString &path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

bool isRootOrDevice(const QString &path)
{
    return QDir::cleanPath(QDir(path).absolutePath()) == QLatin1String("/");
}

RenameOutcome replaceFile(const QString &from, const QString &to)
{
    return std::rename(toNative(from).c_str(), toNative(to).c_str()) == 0 ? RenameOutcome::Renamed
                                                                          : failedRename();
}

bool syncFile(const QString &path)
{
    const int file = open(toNative(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return true;
    const bool isSynced = fdatasync(file) == 0;
    const int error = errno;
    close(file);
    return isSynced || (error != EIO && error != ENOSPC && error != EDQUOT);
}

QString comparableName(const QString &path)
{
    return path;
}

} // namespace platform
