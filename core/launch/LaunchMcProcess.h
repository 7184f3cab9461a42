#pragma once

#include <optional>

#include <QHash>
#include <QProcess>
#include <QProcessEnvironment>

#include "core/launch/GameLaunchBase.h"

class WaitMcClientInitialized;

/// Starts Java with the game, watches the process, and reports what happens as states.
///
/// Main thread only, with a running event loop; its owner deletes it, which ends a running game. It
/// never ends as a task: the owner works out the outcome from processStateChange(). StateExited is
/// the last state of every run in which a process started. It may be started again after that, or
/// after a failed start, but not while a game of it runs. A listener may delete it.
///
/// All that the game prints goes to a file in the instance directory, see docs/files.md.
class RIVETCORE_EXPORT LaunchMcProcess : public GameLaunchBase
{
    Q_OBJECT
public:
    enum ArgsKey {
        ArgJavaPath = 0,    ///< path of the Java program; required
        ArgJavaParam = 1,   ///< Java's own arguments in one text, separated by blanks
        ArgGameBase = 2,    ///< game base directory; required
        ArgInstanceDir = 3, ///< instance directory; required
        ArgUserName = 4,    ///< player name, in Latin-1; required
        ArgUUID = 5,        ///< player uuid; "${auth_uuid}" unless set; required
        ArgAccessToken = 6, ///< "${auth_access_token}" unless set; required
        ArgSession = 7,     ///< "${auth_session}" unless set; required
        ArgServer = 8,      ///< server to join at once
        ArgPort = 9,        ///< its port
    };
    Q_ENUM(ArgsKey)

    enum State {
        StatePreparing = 0,
        StateInitializing = 1,  ///< the process has started
        StateRunning = 2,       ///< the game can take input
        StateExited = 3,        ///< the process has ended
        StateFailedToStart = 4, ///< no such program, or no argument template
        StateCrashed = 5,       ///< crashed, or ended with a code other than 0
        StateUnknownError = 6,
        StateTampered = 7,   ///< the game's files were changed
        StateOtherError = 8, ///< a required argument is empty, or talking to the process failed
    };
    Q_ENUM(State)

    /// @p clientVersion names the version directory in the game base.
    explicit LaunchMcProcess(QString clientVersion, QObject *parent = nullptr);
    ~LaunchMcProcess() override;

    /// The last value of a key counts. A key that is none is logged and ignored.
    void setArgs(LaunchMcProcess::ArgsKey key, QString value);
    /// A key that is none is logged and gives an empty text.
    QString getArgsValue(LaunchMcProcess::ArgsKey key) const;
    /// An empty title leaves the game's own.
    void setMCWindowTitle(const QString &title);
    /// An empty environment leaves the launcher's own.
    void setProcessEnv(const QProcessEnvironment &environment);
    /// An empty directory leaves the launcher's own.
    void setProcessWorkingDir(const QString &directory);

public Q_SLOTS:
    /// Ends the game at once, without a state for a crash; StateExited follows when it is gone.
    /// False if no process is there to end; a launch that is only being prepared goes on.
    bool abort() override;

Q_SIGNALS:
    void processStateChange(LaunchMcProcess::State state);

protected:
    void onTaskRun() override;

    /// Emits processStateChange() unless @p state is the present one.
    virtual void changeProcessState(LaunchMcProcess::State state);

    /// True when nothing of the last run is left to report: its process has ended or never came to
    /// be. False before the first run.
    bool hasRunEnded() const;

protected Q_SLOTS:
    virtual void onGameStarted();
    virtual void onGameFinished(int nExitCode, QProcess::ExitStatus exitStatus);
    virtual void onGameError(QProcess::ProcessError error);
    void onWaitInitThreadFinished();

private:
    bool getMinecraftArgs(QString &program, QStringList &args);
    bool checkRequiredArgs();
    void startMCProcess(QString &program, QStringList &args);
    void gameConfigInit();
    QString getDefaultResourcePack() const;
    QString getDefaultShaderPack() const;
    void safeDeleteLater(QProcess *process);

    QProcessEnvironment m_environment;
    QString m_workingDir;
    QString m_windowTitle;
    QString m_clientVersion;
    QHash<ArgsKey, QString> m_args;
    std::optional<State> m_state; ///< nothing before the first run
    QProcess *m_process = nullptr;
    WaitMcClientInitialized *m_waiter = nullptr; ///< of the last started process; only compared
    bool m_endAsked = false;                     ///< abort() has asked for the process's end
};
