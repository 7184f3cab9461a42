#include "platform/FileEntry.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace platform {

EntryKind entryKind(const QString &path)
{
    struct stat entry
    {
    };
    if (lstat(QFile::encodeName(path).constData(), &entry) != 0)
        return EntryKind::Missing;
    if (S_ISLNK(entry.st_mode))
        return EntryKind::Link;
    return S_ISDIR(entry.st_mode) ? EntryKind::Directory : EntryKind::File;
}

RemovalAttempt removeEntry(const QString &path, EntryKind kind)
{
    const QByteArray name = QFile::encodeName(path);
    const int result =
        kind == EntryKind::Directory ? rmdir(name.constData()) : unlink(name.constData());
    const int error = errno;
    if (result == 0 || error == ENOENT)
        return {true, false, {}};
    return {false, error == EBUSY || error == ETXTBSY || error == EINTR, qt_error_string(error)};
}

RenameOutcome renameEntry(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    int result =
        renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE);
    // Some file systems can't promise to replace nothing: look first there.
    if (result != 0 && (errno == EINVAL || errno == ENOSYS) && entryKind(to) == EntryKind::Missing)
        result = std::rename(source.constData(), target.constData());
    if (result == 0)
        return RenameOutcome::Renamed;
    return errno == EXDEV ? RenameOutcome::OtherFileSystem : RenameOutcome::Failed;
}

void openForRemoval(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat folder
    {
    };
    if (lstat(name.constData(), &folder) == 0 && (folder.st_mode & S_IRWXU) != S_IRWXU)
        chmod(name.constData(), (folder.st_mode & 07777) | S_IRWXU);
}

QString comparableName(const QString &path)
{
    return path;
}

} // namespace platform
