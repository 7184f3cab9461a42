#pragma once

#include "core/launch/LaunchMcProcessFSW.h"
#include "core/launch/MinecraftLaunchStep.h"

class IMCSettings;
class IRivetUserProfile;
class QProcessEnvironment;
struct OrAuthServerInstanceInfo;

/// The last step of a launch: starts the game and watches it.
///
/// Main thread only. Succeeds when the game can take input, or has ended well before that; goes on
/// listening, so the host keeps the chain for as long as the game runs. A crash or a change to the
/// mods of the running game arrives as error() and failed() after the success. It can't be aborted:
/// stopGame() ends the game. Deleting the step ends the game and waits for that.
class RIVETCORE_EXPORT ReadyForGameClientLaunch : public MinecraftLaunchStep
{
    Q_OBJECT
public:
    /// The record is read when the step starts. A step that lacks one of the objects that it needs
    /// fails with the name of that.
    ReadyForGameClientLaunch(std::shared_ptr<OrAuthServerInstanceInfo> info,
                             std::weak_ptr<MCInstanceObj> instance, IResManager *manager,
                             QObject *parent);
    ~ReadyForGameClientLaunch() override;

    /// Not owned; its account has to be that of the session.
    void SetRivetUserProfile(IRivetUserProfile *profile);
    /// Not owned; read for "JavaPath" and "JavaParam".
    void SetMCSettings(IMCSettings *settings);

    bool canAbort() const override;

    /// Adds the variables that the game gets besides those of the launcher.
    virtual void InitGameClientEnv(QProcessEnvironment &env);

public Q_SLOTS:
    /// Does nothing and is false.
    bool abort() override;
    /// Ends the game process at once, which counts as a usual end; false if there is none.
    bool stopGame();

Q_SIGNALS:
    /// The game has ended, in whatever way.
    void gameProcessFinished();

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void onProcessStateChange(LaunchMcProcess::State state);

private:
    bool failsCheck(bool isThere, const char *complaint);
    void startGame(MCInstanceObj &instance);
    void makeGame(MCInstanceObj &instance);
    void setArguments(MCInstanceObj &instance);
    void onGameStarted();
    void onGameEnded();
    void failWithGame(GameLaunchBase::Error error, const char *line, const char *reason);

    const std::shared_ptr<OrAuthServerInstanceInfo> m_info;
    IRivetUserProfile *m_profile = nullptr;
    IMCSettings *m_settings = nullptr;
    QPointer<LaunchMcProcessFSW> m_game; ///< a child, of the last run
};
