#include "core/launch/LaunchMcProcessFSW.h"

#include <algorithm>
#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QPointer>
#include <QSet>

#include "core/foundation/FSH.h"
#include "platform/FileStamp.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

static bool hasWatchedSuffix(const QString &path)
{
    return path.endsWith(QLatin1String(".zip")) || path.endsWith(QLatin1String(".jar")) ||
           path.endsWith(QLatin1String(".class"));
}

static bool isAtOrBelow(const QString &path, const QString &folder)
{
    return path.startsWith(folder) &&
           (path.size() == folder.size() || path.at(folder.size()) == QLatin1Char('/'));
}

LaunchMcProcessFSW::LaunchMcProcessFSW(QString clientVersion, QObject *parent)
    : LaunchMcProcess(std::move(clientVersion), parent)
{
    // A run that never gets as far as a process ends without onGameFinished().
    connect(this, &LaunchMcProcess::processStateChange, this, &LaunchMcProcessFSW::endWatch);
}

LaunchMcProcessFSW::~LaunchMcProcessFSW() = default;

void LaunchMcProcessFSW::onTaskRun()
{
    startModsPathWatcher();
    LaunchMcProcess::onTaskRun();
}

void LaunchMcProcessFSW::startModsPathWatcher()
{
    delete m_watcher;
    m_watcher = new QFileSystemWatcher(this);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this,
            &LaunchMcProcessFSW::onModsPathChanged, Qt::QueuedConnection);
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this,
            &LaunchMcProcessFSW::onModsFileChanged, Qt::QueuedConnection);
    m_watchedFiles.clear();
    m_watchedDirs.clear();
    const QString instanceDir = getArgsValue(ArgInstanceDir);
    if (instanceDir.isEmpty()) {
        qCritical("instance dir could note been empty!");
        return;
    }
    m_instanceDir = QDir::cleanPath(QDir(instanceDir).absolutePath());
    m_modsDir = m_instanceDir + QLatin1Char('/') + FSH::dirNameInGame(ResTypeMods);
    if (!addPathToWatcher(m_modsDir))
        Log::warning(QLatin1String("not expect result on add path: ") + m_modsDir +
                     QLatin1String("to watcher"));
}

bool LaunchMcProcessFSW::addPathToWatcher(const QString &path)
{
    if (!m_watcher) {
        qWarning("file watcher is not create");
        return false;
    }
    if (!FS::makeFolder(path))
        Log::warning(path + QLatin1String("not exist and try to make path failed"));
    if (!QDir(path).exists())
        return true;
    m_watchedDirs << path;
    // The folder above tells when this one is swapped for another or comes back.
    watch({path, m_instanceDir});
    const QStringList files = watchNewFoldersAndList(path);
    // Stamped once they are watched: every change after the stamp is then an event.
    watch(files);
    for (const QString &file : files)
        m_watchedFiles.insert(file, platform::fileStamp(file));
    return true;
}

void LaunchMcProcessFSW::watch(const QStringList &paths)
{
    if (!m_watcher || paths.isEmpty())
        return;
    QStringList refused = m_watcher->addPaths(paths);
    if (refused.isEmpty())
        return;
    // What is watched already is refused as well.
    const QStringList watched = m_watcher->files() + m_watcher->directories();
    const QSet<QString> known(watched.begin(), watched.end());
    refused.erase(std::remove_if(refused.begin(), refused.end(),
                                 [&](const QString &path) { return known.contains(path); }),
                  refused.end());
    if (!refused.isEmpty())
        Log::warning(QString::number(refused.size()) +
                     QLatin1String(" paths of the mods folder can't be watched, the system's limit "
                                   "may be reached; the first is ") +
                     refused.first());
}

/// Another folder may have come under a known name, and the watch hangs on the folder itself.
void LaunchMcProcessFSW::watchFoldersAgain(const QString &path)
{
    QStringList present;
    for (const QString &dir : qAsConst(m_watchedDirs)) {
        if (!isAtOrBelow(dir, path))
            continue;
        if (m_watcher)
            m_watcher->removePath(dir);
        if (QFileInfo(dir).isDir())
            present << dir;
    }
    watch(present);
}

/// Lists the files of a watched kind below @p path. Each folder is watched by the time of the
/// listing, so that what changes after it is told.
QStringList LaunchMcProcessFSW::watchNewFoldersAndList(const QString &path)
{
    for (;;) {
        QStringList newDirs, files;
        const QStringList entries = FSH::getFileListFromDirRecursively(path);
        for (const QString &entry : entries) {
            if (!QFileInfo(entry).isDir()) {
                if (hasWatchedSuffix(entry))
                    files << entry;
            } else if (!m_watchedDirs.contains(entry)) {
                newDirs << entry;
                m_watchedDirs << entry;
            }
        }
        if (newDirs.isEmpty())
            return files;
        watch(newDirs);
    }
}

/// @p files are those that lie below @p path now.
bool LaunchMcProcessFSW::isTampered(const QString &path, const QStringList &files) const
{
    const auto isKnown = [&](const QString &file) {
        const auto known = m_watchedFiles.constFind(file);
        return known != m_watchedFiles.constEnd() && *known == platform::fileStamp(file);
    };
    const auto isBelow = [&](const QString &file) { return isAtOrBelow(file, path); };
    return !std::all_of(files.begin(), files.end(), isKnown) ||
           files.size() <
               std::count_if(m_watchedFiles.keyBegin(), m_watchedFiles.keyEnd(), isBelow);
}

void LaunchMcProcessFSW::onModsPathChanged(const QString &path)
{
    // Notices may still be on their way when the game has ended.
    if (hasRunEnded())
        return;
    const QString folder = path == m_instanceDir ? m_modsDir : path;
    QStringList files;
    if (QDir(folder).exists()) {
        watchFoldersAgain(folder);
        files = watchNewFoldersAndList(folder);
    } else {
        qWarning("Mods path is not exist");
    }
    if (isTampered(folder, files))
        onModsFileChanged(folder);
}

void LaunchMcProcessFSW::onModsFileChanged(const QString &path)
{
    Q_UNUSED(path)
    if (hasRunEnded())
        return;
    abort();
    changeProcessState(StateTampered);
}

void LaunchMcProcessFSW::onGameFinished(int nExitCode, QProcess::ExitStatus exitStatus)
{
    const QPointer<LaunchMcProcessFSW> self(this);
    LaunchMcProcess::onGameFinished(nExitCode, exitStatus);
    if (self)
        endWatch();
}

/// All paths go with the watcher, in a fraction of the time that taking each out of it costs. A
/// listener may have started the next run meanwhile, with a watch of its own.
void LaunchMcProcessFSW::endWatch()
{
    if (hasRunEnded())
        delete std::exchange(m_watcher, nullptr);
}
