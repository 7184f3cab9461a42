#include "core/foundation/MCSettings.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryFile>

#include "platform/FixedDrives.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/FS.h"

namespace {

const QString dataPathKey = QStringLiteral("DataPath");
const QString changedDataDirKey = QStringLiteral("ChangedDataDir");
const QString gameFolder = QStringLiteral("rivet_game");

/// The drives to try, best first. A drive counts only if it has more space than each drive before
/// it in the order of letters.
QVector<platform::FixedDrive> drivesToTry()
{
    QVector<platform::FixedDrive> records;
    quint64 mostFreeBytes = 0;
    const QVector<platform::FixedDrive> drives = platform::FixedDrives::current().table();
    for (const platform::FixedDrive &drive : drives) {
        if (drive.freeBytesAvailable > mostFreeBytes) {
            mostFreeBytes = drive.freeBytesAvailable;
            records.append(drive);
        }
    }
    std::sort(records.begin(), records.end(), [](const auto &one, const auto &other) {
        return one.freeBytesAvailable > other.freeBytesAvailable;
    });
    return records;
}

} // namespace

MCSettings::MCSettings() : m_store(std::make_unique<QSettings>()) {}

MCSettings::~MCSettings() = default;

void MCSettings::validateSettingValues()
{
    for (const char *key : {"notifyupdate", "minimizeOnClose", "ShowTrayBalloonMsg"})
        setMissing(QLatin1String(key), true);
    validateDataPath();
    setMissing(QStringLiteral("JavaParam"), CCommonFunction::GetDefaultJVMParam(false));
    setValue(QStringLiteral("channel"), channelOfThisCopy());
    save();
}

QVariant MCSettings::value(const QString &key, const QVariant &defaultValue)
{
    return m_store->value(key, defaultValue);
}

void MCSettings::setValue(const QString &key, const QVariant &value)
{
    m_store->setValue(key, value);
}

void MCSettings::remove(const QString &key)
{
    m_store->remove(key);
}

void MCSettings::save()
{
    m_store->sync();
}

/// A file is no directory, though QDir::exists() takes it for one.
bool MCSettings::validateGamePath(const QString &path)
{
    if (path.isEmpty())
        return false;
    const QDir appDir(QCoreApplication::applicationDirPath());
    return FS::makeFolder(appDir.absoluteFilePath(path));
}

QString MCSettings::autoSelectNewGamePath()
{
    const QString besideHost = QLatin1String("./") % gameFolder;
    if (QFileInfo(QDir(QCoreApplication::applicationDirPath()), besideHost).isDir())
        return besideHost;

    const QVector<platform::FixedDrive> drives = drivesToTry();
    for (const platform::FixedDrive &drive : drives) {
        const QString candidate = drive.root % gameFolder;
        if (DirLegitimacyVerify(candidate))
            return candidate;
    }
    // No separator between them: players have their data in a folder of this very name.
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) % gameFolder;
}

bool MCSettings::DirLegitimacyVerify(const QString &path)
{
    if (path.isEmpty() || !FS::makeFolder(path))
        return false;
    // The backslash of Windows, whatever stands in the path. Elsewhere a backslash would be part of
    // the file's name and the folder above would be tried instead.
    QTemporaryFile probe(path % QDir::separator() % QLatin1String("rivet_game.temp"));
    return probe.open();
}

void MCSettings::setMissing(const QString &key, const QVariant &value)
{
    if (!m_store->contains(key))
        setValue(key, value);
}

/// A change of directory is tried at exactly one start.
void MCSettings::validateDataPath()
{
    const QString changed = value(changedDataDirKey, {}).toString();
    if (!changed.isEmpty() && validateGamePath(changed)) {
        setValue(dataPathKey, changed);
    } else {
        const QString path = value(dataPathKey, {}).toString();
        if (path.isEmpty() || !validateGamePath(path))
            setValue(dataPathKey, autoSelectNewGamePath());
    }
    remove(changedDataDirKey);
}

QString MCSettings::channelOfThisCopy() const
{
    const QSettings config(QCoreApplication::applicationDirPath() % QLatin1String("/config.ini"),
                           QSettings::IniFormat);
    const QString channel = config.value(QStringLiteral("OPTION/channel"), QString()).toString();
    return channel.isEmpty() ? QStringLiteral("oriel") : channel;
}
