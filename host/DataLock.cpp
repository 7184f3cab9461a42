#include "host/DataLock.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>

#include "core/foundation/FSH.h"
#include "support/jsonfskit/FS.h"

using platform::FileLock;

namespace {

QString lockFile(const QString &name)
{
    const QString folder = FSH::localAppDataPath() % QLatin1String("/running");
    // Where it can't be made there is no lock to be had, as the caller finds.
    (void)FS::makeFolder(folder);
    return folder % QLatin1Char('/') % name;
}

const QString repairName = QStringLiteral("repair.lock");

/// Others hold a file for a moment while they look whether somebody has it.
std::unique_ptr<FileLock> takeSoon(const QString &name)
{
    constexpr int mostTries = 10;
    constexpr unsigned long pauseMs = 20;
    for (int tries = 0; tries < mostTries; ++tries) {
        if (auto lock = FileLock::tryTake(lockFile(name)))
            return lock;
        QThread::msleep(pauseMs);
    }
    return nullptr;
}

} // namespace

// Each side takes its own lock first and then looks for the other, so they never miss each other.

std::optional<DataLock> DataLock::forLaunch()
{
    const QString name = QStringLiteral("launch-%1.lock").arg(QCoreApplication::applicationPid());
    auto own = takeSoon(name);
    // Without any lock, as on some network drives, the user plays all the same.
    if (own && !takeSoon(repairName))
        return std::nullopt;
    return DataLock(std::move(own));
}

std::optional<DataLock> DataLock::forRepair()
{
    const QString path = lockFile(repairName);
    auto own = FileLock::tryTake(path);
    if (!own)
        return std::nullopt;
    const QDir folder = QFileInfo(path).dir();
    const QStringList launches = folder.entryList({QStringLiteral("launch-*.lock")}, QDir::Files);
    for (const QString &launch : launches) {
        // What a killed launch has left goes with this.
        if (!FileLock::tryTake(folder.filePath(launch)))
            return std::nullopt;
    }
    return DataLock(std::move(own));
}
