#include "core/deploy/DepHistoryFlatFile.h"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>

#include "core/deploy/DeployedFile.h"
#include "core/deploy/HistoryFile.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr int mostFilesRecorded = 101;

void warnOfFile()
{
    Log::warning(QStringLiteral("Couldn't open save file."));
}

/// An item that can't be built has no record in the file; an empty one would damage the rest.
void putBuilt(QHash<quint64, QByteArray> &records, quint64 resKey, const QByteArray &built)
{
    if (built.isEmpty())
        records.remove(resKey);
    else
        records.insert(resKey, built);
}

} // namespace

DepHistoryFlatFile::DepHistoryFlatFile() = default;

DepHistoryFlatFile::DepHistoryFlatFile(const DepHistoryFlatFile &other)
{
    *this = other;
}

DepHistoryFlatFile &DepHistoryFlatFile::operator=(const DepHistoryFlatFile &other)
{
    if (this == &other)
        return *this;
    // One after the other, so that two objects may be assigned to each other.
    QMutexLocker otherLock(&other.m_mutex);
    const bool inited = other.m_inited;
    const QString path = other.m_path;
    const auto table = other.m_table;
    const auto built = other.m_built;
    otherLock.unlock();

    const QMutexLocker lock(&m_mutex);
    m_inited = inited;
    m_path = path;
    m_table = table;
    m_built = built;
    return *this;
}

DepHistoryFlatFile::~DepHistoryFlatFile()
{
    save();
}

void DepHistoryFlatFile::init(const QString &path)
{
    if (path.isEmpty()) {
        Log::critical(QStringLiteral("config file path not set!"));
        return;
    }
    const QMutexLocker lock(&m_mutex);
    if (m_inited)
        return;
    m_table.clear();
    m_built.clear();
    m_inited = true;
    m_path = path;
    if (!QFileInfo::exists(path))
        return;
    const std::optional<QByteArray> data = FS::readFile(path);
    if (!data) {
        warnOfFile();
        return;
    }
    m_table = HistoryFile::parse(*data);
    for (auto folder = m_table.cbegin(); folder != m_table.cend(); ++folder) {
        QHash<quint64, QByteArray> &built = m_built[folder.key()];
        for (auto item = folder->cbegin(); item != folder->cend(); ++item)
            putBuilt(built, item.key(), HistoryFile::buildRecord(item.key(), *item));
    }
}

void DepHistoryFlatFile::insertRecord(const QString &deployPath, quint64 resKey,
                                      const QStringList &files, const QDateTime &time, bool save)
{
    const QString folder = QDir::cleanPath(deployPath);
    const DeployRecordItem item{time, sumsOf(folder, files)};
    const QByteArray built = HistoryFile::buildRecord(resKey, item);
    {
        const QMutexLocker lock(&m_mutex);
        m_table[folder].insert(resKey, item);
        putBuilt(m_built[folder], resKey, built);
    }
    if (save)
        this->save();
}

bool DepHistoryFlatFile::queryRecord(const QString &deployPath, quint64 resKey,
                                     DeployRecordItem &item)
{
    const QMutexLocker lock(&m_mutex);
    const auto folder = m_table.constFind(QDir::cleanPath(deployPath));
    if (folder == m_table.constEnd() || !folder->contains(resKey))
        return false;
    item = folder->value(resKey);
    return true;
}

bool DepHistoryFlatFile::deleteRecord(const QString &deployPath, quint64 resKey, bool save)
{
    const QString path = QDir::cleanPath(deployPath);
    {
        const QMutexLocker lock(&m_mutex);
        const auto folder = m_table.find(path);
        if (folder == m_table.end() || folder->remove(resKey) == 0)
            return false;
        m_built[path].remove(resKey);
    }
    if (save)
        this->save();
    return true;
}

QList<quint64> DepHistoryFlatFile::getDeployResInDeployFolder(const QString &deployPath)
{
    const QMutexLocker lock(&m_mutex);
    return m_table.value(QDir::cleanPath(deployPath)).keys();
}

void DepHistoryFlatFile::clearAllRecord()
{
    const QMutexLocker lock(&m_mutex);
    m_table.clear();
    m_built.clear();
}

bool DepHistoryFlatFile::isIgnoreFile(const QString &path)
{
    return !QFileInfo(path).isFile();
}

void DepHistoryFlatFile::save()
{
    QMutexLocker lock(&m_mutex);
    const quint64 ask = ++m_savesAsked;
    lock.unlock();

    const QMutexLocker fileLock(&m_fileMutex);
    if (m_savesDone >= ask)
        return;
    lock.relock();
    const auto built = m_built;
    const QString path = m_path;
    const quint64 covered = m_savesAsked;
    lock.unlock();
    const std::optional<QByteArray> data = HistoryFile::build(built);
    if (data && FS::writeFile(path, *data))
        m_savesDone = covered;
    else
        warnOfFile();
}

/// The files of @p files that a record in @p folder takes, with their sums.
QHash<QString, QString> DepHistoryFlatFile::sumsOf(const QString &folder, const QStringList &files)
{
    QHash<QString, QString> sums;
    for (const QString &name : files) {
        const QString path = folder % QDir::separator() % name;
        if (isIgnoreFile(path))
            continue;
        if (sums.size() >= mostFilesRecorded)
            break;
        const std::optional<QString> sum = DeployedFile::md5(path);
        if (!sum)
            Log::warning(QLatin1String("open file ") % path % QLatin1String("failed!"));
        sums.insert(name, sum.value_or(QLatin1String(DeployedFile::md5OfNothing)));
    }
    return sums;
}
