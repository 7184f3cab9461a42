#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>

#include "core/launch/LaunchMcProcess.h"

class QFileSystemWatcher;

/// A game whose mods folder must not change while it runs: it is watched from before the start
/// until the game has ended. A watched file (*.zip, *.jar, *.class) that is changed, replaced,
/// removed or added ends the game and is reported as StateTampered; StateExited follows.
///
/// Main thread only. Other files in the folder may change. Where the system can't watch all of it,
/// the log says so.
class RIVETCORE_EXPORT LaunchMcProcessFSW : public LaunchMcProcess
{
    Q_OBJECT
public:
    /// @p clientVersion names the version directory in the game base.
    explicit LaunchMcProcessFSW(QString clientVersion, QObject *parent = nullptr);
    ~LaunchMcProcessFSW() override;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void onGameFinished(int nExitCode, QProcess::ExitStatus exitStatus) override;
    /// A name came or went in @p path, the mods folder or one inside it; or in the instance
    /// directory, where only the mods folder counts.
    void onModsPathChanged(const QString &path);
    void onModsFileChanged(const QString &path);

private:
    void startModsPathWatcher();
    void endWatch();
    bool addPathToWatcher(const QString &path);
    void watch(const QStringList &paths);
    void watchFoldersAgain(const QString &path);
    QStringList watchNewFoldersAndList(const QString &path);
    bool isTampered(const QString &path, const QStringList &files) const;

    QFileSystemWatcher *m_watcher = nullptr;   ///< null when no run is watched
    QHash<QString, QByteArray> m_watchedFiles; ///< known at the start of the run, with their stamps
    QSet<QString> m_watchedDirs;               ///< the mods folder and those below it
    QString m_instanceDir, m_modsDir;          ///< absolute, as the watcher names them
};
