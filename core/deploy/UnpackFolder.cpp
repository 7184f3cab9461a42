#include "core/deploy/UnpackFolder.h"

#include <QDir>
#include <QThread>
#include <QUuid>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"

namespace UnpackFolder {

namespace {

constexpr int nameLength = 38;

const QString lockEnding = QStringLiteral(".lock");

constexpr int mostTries = 100;

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

std::unique_ptr<platform::FileLock> lock(const QString &path)
{
    const QString file = QDir().absoluteFilePath(path % lockEnding);
    auto lock = platform::FileLock::tryTake(file);
    // A sweep that has just found the file may have been quicker.
    for (int tries = 1; !lock && tries < mostTries; ++tries) {
        QThread::msleep(1);
        lock = platform::FileLock::tryTake(file);
    }
    return lock;
}

void sweep(const QString &deployDir)
{
    if (deployDir.isEmpty())
        return;
    // The lock comes before its folder and goes after it, so each leftover is in this list.
    const auto listing =
        platform::listFolder(platform::toNative(QDir().absoluteFilePath(deployDir)));
    for (const platform::NativePath &entry : listing.entries) {
        const QString name = platform::fromNative(entry.filename());
        const QString folder = name.left(nameLength);
        const bool isLock = name.size() > nameLength;
        if (!isName(folder) || (isLock && name.mid(nameLength) != lockEnding))
            continue;
        const QString path = QDir().absoluteFilePath(pathIn(deployDir, folder));
        const platform::EntryKind kind = platform::entryKind(path);
        if (kind != platform::EntryKind::Directory && !isLock)
            continue;
        const auto owner = platform::FileLock::tryTake(path % lockEnding);
        if (owner && kind == platform::EntryKind::Directory)
            FS::removeTree(path);
    }
}

} // namespace UnpackFolder
