#include "core/foundation/FileMove.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace FileMove {

using platform::EntryKind;
using platform::NativePath;
using platform::RenameOutcome;

namespace {

NativePath toNative(const QString &path)
{
    return platform::toNative(QDir().absoluteFilePath(path));
}

bool copyContent(QFile &source, QFileDevice &target)
{
    QByteArray block(1 << 20, Qt::Uninitialized);
    while (true) {
        const qint64 bytes = source.read(block.data(), block.size());
        if (bytes <= 0)
            return bytes == 0 && target.flush();
        if (target.write(block.constData(), bytes) != bytes)
            return false;
    }
}

/// QFile::rename() would drop the source before the last block of the copy is on disk.
bool moveByCopy(const QString &from, const QString &to)
{
    QFile source(from);
    QSaveFile target(to);
    const bool isFreeWay =
        QFileInfo(from).isFile() && platform::entryKind(toNative(to)) == EntryKind::Missing;
    if (!isFreeWay || !source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly) ||
        !copyContent(source, target))
        return false;
    // Not every file system knows the two; the content does not depend on them.
    target.setPermissions(source.permissions());
    target.setFileTime(source.fileTime(QFileDevice::FileModificationTime),
                       QFileDevice::FileModificationTime);
    if (!target.commit())
        return false;
    source.close();
    if (platform::removeEntry(toNative(from), EntryKind::File).removed)
        return true;
    platform::removeEntry(toNative(to), EntryKind::File);
    return false;
}

} // namespace

void removeTarget(const QString &target)
{
    if (FS::removeFile(QDir().absoluteFilePath(target)))
        return;
    QFile file(target);
    const QFileDevice::Permissions before = file.permissions();
    const bool isFile = platform::entryKind(toNative(target)) == EntryKind::File;
    if (isFile && file.setPermissions(QFileDevice::ReadOther | QFileDevice::WriteOther) &&
        file.remove())
        return;
    Log::debug(QLatin1String("delete file failed:") % target);
    // It stays, so its owner has to be able to read it as before.
    if (isFile)
        file.setPermissions(before);
}

bool rename(const QString &from, const QString &to)
{
    const RenameOutcome outcome = platform::renameEntry(toNative(from), toNative(to));
    return outcome == RenameOutcome::Renamed ||
           (outcome == RenameOutcome::OtherFileSystem && moveByCopy(from, to));
}

/// A link in the last place is an entry of its own.
bool isSameEntry(const QString &one, const QString &other)
{
    const QFileInfo first(one), second(other);
    return platform::comparableName(first.fileName()) ==
               platform::comparableName(second.fileName()) &&
           platform::isSameEntry(toNative(first.absolutePath()), toNative(second.absolutePath()));
}

} // namespace FileMove
