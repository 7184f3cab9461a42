#include "core/launch/ReadyForGameClientLaunch.h"

#include <QDir>
#include <QProcessEnvironment>

#include "core/accounts/IRivetUserProfile.h"
#include "core/foundation/FSH.h"
#include "core/foundation/IMCSettings.h"
#include "core/launch/MCInstanceObj.h"
#include "core/launch/OrAuthServerInstanceInfo.h"
#include "support/coresupport/DirectoryNames.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr char noInfo[] = QT_TRANSLATE_NOOP("ReadyForGameClientLaunch",
                                            "or mc auth game instance information object is null");
constexpr char noProfile[] =
    QT_TRANSLATE_NOOP("ReadyForGameClientLaunch", "rivet user profile have not been set");

} // namespace

ReadyForGameClientLaunch::ReadyForGameClientLaunch(std::shared_ptr<OrAuthServerInstanceInfo> info,
                                                   std::weak_ptr<MCInstanceObj> instance,
                                                   IResManager *manager, QObject *parent)
    : MinecraftLaunchStep(std::move(instance), manager, parent), m_info(std::move(info))
{
}

/// Here, while the game's states can't reach this object any more.
ReadyForGameClientLaunch::~ReadyForGameClientLaunch()
{
    const auto games = findChildren<LaunchMcProcessFSW *>(QString(), Qt::FindDirectChildrenOnly);
    for (LaunchMcProcessFSW *game : games) {
        game->disconnect(this);
        delete game;
    }
}

void ReadyForGameClientLaunch::SetRivetUserProfile(IRivetUserProfile *profile)
{
    m_profile = profile;
}

void ReadyForGameClientLaunch::SetMCSettings(IMCSettings *settings)
{
    m_settings = settings;
}

bool ReadyForGameClientLaunch::canAbort() const
{
    return false;
}

bool ReadyForGameClientLaunch::abort()
{
    return false;
}

bool ReadyForGameClientLaunch::stopGame()
{
    return m_game && m_game->abort();
}

void ReadyForGameClientLaunch::onTaskRun()
{
    MinecraftLaunchStep::onTaskRun();
    setTaskBrief(tr("launch game client"));
    setCurProgress(20, 100);
    const auto target = instance();
    if (failsCheck(bool(target), QT_TR_NOOP("game instance temp object is null")) ||
        failsCheck(bool(m_info), noInfo) || failsCheck(m_profile, noProfile) ||
        failsCheck(m_settings, QT_TR_NOOP("rivet settings  have not been set")))
        return;
    if (!m_info->session.IsSessionValid(m_profile->getBid())) {
        failWith(ErrNeedLogin, tr("need login"));
        return;
    }
    if (m_info->host.isEmpty() || m_info->port == 0)
        Log::warning(QStringLiteral("host or port is invalid"));
    startGame(*target);
}

bool ReadyForGameClientLaunch::failsCheck(bool isThere, const char *complaint)
{
    if (isThere)
        return false;
    Log::critical(QString::fromUtf8(complaint));
    emitFailed(tr(complaint));
    return true;
}

void ReadyForGameClientLaunch::startGame(MCInstanceObj &instance)
{
    setStatus(tr("trying to start the game"));
    setCurProgress(40, 100);
    makeGame(instance);
    setArguments(instance);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    InitGameClientEnv(environment);
    m_game->setProcessEnv(environment);
    m_game->setProcessWorkingDir(instance.instanceDir());
    m_game->setMCWindowTitle(m_info->windowTitle);
    connect(m_game, &LaunchMcProcess::processStateChange, this,
            &ReadyForGameClientLaunch::onProcessStateChange);
    m_game->start();
}

/// A game of an earlier run may still be played; it is no concern of this run.
void ReadyForGameClientLaunch::makeGame(MCInstanceObj &instance)
{
    if (m_game)
        m_game->disconnect(this);
    m_game = new LaunchMcProcessFSW(instance.clientVersion(), this);
}

void ReadyForGameClientLaunch::setArguments(MCInstanceObj &instance)
{
    const auto setting = [this](const char *key) {
        return m_settings->value(QString::fromUtf8(key), QVariant()).toString();
    };
    const OrMCAuthSession &session = m_info->session;
    m_game->setArgs(LaunchMcProcess::ArgJavaPath, setting("JavaPath"));
    m_game->setArgs(LaunchMcProcess::ArgJavaParam, setting("JavaParam"));
    m_game->setArgs(LaunchMcProcess::ArgGameBase, FSH::gameDataAbsolutePath() % QDir::separator() %
                                                      QString::fromUtf8(g_deploypath_game_name));
    m_game->setArgs(LaunchMcProcess::ArgInstanceDir, instance.instanceDir());
    m_game->setArgs(LaunchMcProcess::ArgUserName, session.GetPlayerName());
    m_game->setArgs(LaunchMcProcess::ArgUUID, session.GetUUID());
    m_game->setArgs(LaunchMcProcess::ArgAccessToken, session.GetAccessToken());
    m_game->setArgs(LaunchMcProcess::ArgSession, session.GetSession());
    m_game->setArgs(LaunchMcProcess::ArgServer, m_info->host);
    m_game->setArgs(LaunchMcProcess::ArgPort, QString::number(m_info->port));
}

void ReadyForGameClientLaunch::InitGameClientEnv(QProcessEnvironment &env)
{
    if (!m_info) {
        Log::critical(QString::fromUtf8(noInfo));
        return;
    }
    if (!m_profile) {
        Log::critical(QString::fromUtf8(noProfile));
        return;
    }
    env.insert(QStringLiteral("SID"), m_info->sid);
    env.insert(QStringLiteral("UUID"), QString::number(m_profile->getBid()));
}

void ReadyForGameClientLaunch::onProcessStateChange(LaunchMcProcess::State state)
{
    switch (state) {
    case LaunchMcProcess::StatePreparing:
        break;
    case LaunchMcProcess::StateInitializing:
        onGameStarted();
        break;
    case LaunchMcProcess::StateRunning:
        succeed();
        break;
    case LaunchMcProcess::StateExited:
        onGameEnded();
        break;
    case LaunchMcProcess::StateFailedToStart:
        failWithGame(ErrStartFailed, QT_TR_NOOP("The process failed to start."), nullptr);
        break;
    case LaunchMcProcess::StateCrashed:
        failWithGame(ErrGameCrashed, QT_TR_NOOP("Game crashed."), nullptr);
        break;
    case LaunchMcProcess::StateUnknownError:
        failWithGame(ErrStartUnknown, QT_TR_NOOP("The process failed to start with unknown error."),
                     nullptr);
        break;
    case LaunchMcProcess::StateOtherError:
        failWithGame(ErrStartOther, QT_TR_NOOP("The process failed to start with other error."),
                     nullptr);
        break;
    case LaunchMcProcess::StateTampered:
        failWithGame(ErrTampered, "mod file are tampered",
                     QT_TR_NOOP("minecraft start failed, because some files are tampered, please "
                                "restart minecraft."));
        break;
    }
}

void ReadyForGameClientLaunch::onGameStarted()
{
    const QPointer<ReadyForGameClientLaunch> self(this);
    setCurProgress(95, 100);
    if (self)
        setStatus(tr("game client initialize..."));
}

/// A game that ends well before it could take input has been launched all the same.
void ReadyForGameClientLaunch::onGameEnded()
{
    const QPointer<ReadyForGameClientLaunch> self(this);
    if (isRunning())
        succeed();
    if (self)
        Q_EMIT gameProcessFinished();
}

/// The line goes to the log; it is the reason, too, where there is no other.
void ReadyForGameClientLaunch::failWithGame(GameLaunchBase::Error error, const char *line,
                                            const char *reason)
{
    Log::critical(QString::fromUtf8(line));
    failWith(error, tr(reason ? reason : line));
}
