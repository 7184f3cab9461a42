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
using platform::RenameOutcome;

namespace {

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
        QFileInfo(from).isFile() && platform::entryKind(to) == EntryKind::Missing;
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
    if (platform::removeEntry(from, EntryKind::File).removed)
        return true;
    platform::removeEntry(to, EntryKind::File);
    return false;
}

/// A link in the last place stays one.
QString entryIdentity(const QString &path)
{
    const QFileInfo info(path);
    return platform::comparableName(
        QString(info.absoluteDir().canonicalPath() % QLatin1Char('/') % info.fileName()));
}

} // namespace

void removeTarget(const QString &target)
{
    if (FS::removeFile(QDir().absoluteFilePath(target)))
        return;
    QFile file(target);
    const QFileDevice::Permissions before = file.permissions();
    const bool isFile = platform::entryKind(QDir().absoluteFilePath(target)) == EntryKind::File;
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
    const QString source = QDir().absoluteFilePath(from);
    const QString target = QDir().absoluteFilePath(to);
    const RenameOutcome outcome = platform::renameEntry(source, target);
    return outcome == RenameOutcome::Renamed ||
           (outcome == RenameOutcome::OtherFileSystem && moveByCopy(source, target));
}

bool isSameEntry(const QString &one, const QString &other)
{
    return entryIdentity(one) == entryIdentity(other);
}

} // namespace FileMove
