#include "core/deploy/UnpackFolder.h"

#include <chrono>

#include <QDir>
#include <QUuid>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"

namespace UnpackFolder {

namespace {

constexpr int nameLength = 38;

const QString lockEnding = QStringLiteral(".lock");

// A process that was killed before its id stood in its lock file would keep it for ever. The lock
// of a process that still runs is not given away however old it is.
constexpr std::chrono::milliseconds oldestNamelessLock = std::chrono::hours(24);

QString pathIn(const QString &deployDir, const QString &name)
{
    return deployDir % QDir::separator() % name;
}

} // namespace

QString newPath(const QString &deployDir)
{
    return pathIn(deployDir, QUuid::createUuid().toString());
}

bool isName(const QString &name)
{
    return name.size() == nameLength && QUuid(name).toString() == name && !QUuid(name).isNull();
}

std::unique_ptr<QLockFile> lock(const QString &path)
{
    auto lock = std::make_unique<QLockFile>(path % lockEnding);
    lock->setStaleLockTime(static_cast<int>(oldestNamelessLock.count()));
    lock->tryLock(0);
    return lock;
}

void sweep(const QString &deployDir)
{
    if (deployDir.isEmpty())
        return;
    // The lock comes before its folder and goes after it, so each leftover is in this list.
    const QStringList names =
        QDir(deployDir).entryList({QStringLiteral("{*}"), QStringLiteral("{*}.lock")},
                                  QDir::Dirs | QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QString folder = name.left(nameLength);
        const bool isLock = name.size() > nameLength;
        if (!isName(folder) || (isLock && name.mid(nameLength) != lockEnding))
            continue;
        const QString path = QDir().absoluteFilePath(pathIn(deployDir, folder));
        const platform::EntryKind kind = platform::entryKind(path);
        if (kind != platform::EntryKind::Directory && !isLock)
            continue;
        const std::unique_ptr<QLockFile> owner = lock(path);
        if (owner->isLocked() && kind == platform::EntryKind::Directory)
            FS::removeTree(path);
    }
}

} // namespace UnpackFolder
