#include "core/deploy/UnpackFolder.h"

#include <QDir>
#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <QUuid>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"

namespace UnpackFolder {

namespace {

constexpr int nameLength = 38;

const QString lockEnding = QStringLiteral(".lock");

constexpr int mostTries = 100;

struct SweptDirectory
{
    QMutex mutex; ///< held while it is swept
    bool isClean = false;
};

/// What this process knows of @p deployDir.
std::shared_ptr<SweptDirectory> sweptDirectory(const QString &deployDir)
{
    static QMutex mutex;
    static QHash<QString, std::shared_ptr<SweptDirectory>> directories;
    const QMutexLocker lock(&mutex);
    auto &directory = directories[QDir::cleanPath(QDir().absoluteFilePath(deployDir))];
    if (!directory)
        directory = std::make_shared<SweptDirectory>();
    return directory;
}

QString pathIn(const QString &deployDir, const QString &name)
{
    return deployDir % QDir::separator() % name;
}

/// False if something is left: somebody uses it, or it can't be removed just now.
bool removeLeftovers(const QString &deployDir)
{
    // The lock comes before its folder and goes after it, so each leftover is in this list.
    const auto listing =
        platform::listFolder(platform::toNative(QDir().absoluteFilePath(deployDir)));
    bool isClean = listing.failure.isEmpty();
    for (const platform::FolderEntry &entry : listing.entries) {
        const QString name = platform::fromNative(entry.path.filename());
        const QString folder = name.left(nameLength);
        const bool isLock = name.size() > nameLength;
        if (!isName(folder) || (isLock && name.mid(nameLength) != lockEnding))
            continue;
        const QString path = QDir().absoluteFilePath(pathIn(deployDir, folder));
        const platform::EntryKind kind = platform::entryKind(path);
        if (kind != platform::EntryKind::Directory && !isLock)
            continue;
        const auto owner = platform::FileLock::tryTake(path % lockEnding);
        if (!owner || (kind == platform::EntryKind::Directory && !FS::removeTree(path)))
            isClean = false;
    }
    return isClean;
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
    const auto directory = sweptDirectory(deployDir);
    const QMutexLocker lock(&directory->mutex);
    if (!directory->isClean)
        directory->isClean = removeLeftovers(deployDir);
}

void sweepAgain(const QString &deployDir)
{
    const auto directory = sweptDirectory(deployDir);
    const QMutexLocker lock(&directory->mutex);
    directory->isClean = false;
}

} // namespace UnpackFolder
