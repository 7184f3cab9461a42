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
    const bool isMade = FS::makeFolder(folder);
    Q_UNUSED(isMade)
    return folder % QLatin1Char('/') % name;
}

const QString repairName = QStringLiteral("repair.lock");

bool isRepairRunning()
{
    // Another launch holds the file while it looks.
    constexpr int mostLooks = 10;
    constexpr unsigned long pauseMs = 20;
    for (int looks = 0; looks < mostLooks; ++looks) {
        if (FileLock::tryTake(lockFile(repairName)))
            return false;
        QThread::msleep(pauseMs);
    }
    return true;
}

} // namespace

// Each side takes its own lock first and then looks for the other, so they never miss each other.

std::optional<DataLock> DataLock::forLaunch()
{
    const QString name = QStringLiteral("launch-%1.lock").arg(QCoreApplication::applicationPid());
    auto own = FileLock::tryTake(lockFile(name));
    // Without any lock, as on some network drives, the user plays all the same.
    if (own && isRepairRunning())
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
