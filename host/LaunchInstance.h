#pragma once

#include <memory>

#include <QJsonObject>

#include "core/accounts/OrMCAuthenticateTask.h"
#include "core/launch/GameLaunchBase.h"
#include "core/launch/MCInstanceObj.h"
#include "core/launch/OrAuthServerInstanceInfo.h"

class HttpRequestTask;
class MinecraftLauncher;
class ReadyForGameClientLaunch;
class ResourceManager;

/// An instance of the user's list that can be launched: it gets a game session, builds the chain of
/// steps and runs it.
///
/// Main thread. The host keeps it until ended(): the chain owns the running game.
class LaunchInstance final : public MCInstanceObj
{
    Q_OBJECT
public:
    /// @p description is the service's object for the instance. @p resources is not owned.
    LaunchInstance(quint32 id, const QJsonObject &description, ResourceManager &resources);
    ~LaunchInstance() override;

    quint32 instanceId() override { return m_id; }
    QString instanceName() override;
    QString clientVersion() override;
    QString instanceDir() override;

public Q_SLOTS:
    /// @p json may hold "user", the name of who plays.
    void start(QJsonObject json) override;
    /// Aborts the chain, or ends the game that runs; ended() follows.
    void stop() override;

Q_SIGNALS:
    void stage(QString name);
    void status(QString text);
    /// Something unusual that the user has to know.
    void notice(QString text);
    /// Per cent.
    void progress(int percent);
    /// The game can take input.
    void gameStarted();
    /// Once. @p error is a GameLaunchBase::Error, meaningful where @p isGood is false; @p reason is
    /// a text for the user.
    void ended(bool isGood, int error, QString reason);

private:
    void authenticate();
    void onAuthenticated();
    void playOffline();
    void takeDefaultsOfService();
    void buildChain();
    void runChain();
    void onChainFinished();
    void onGameFailed(const QString &reason);
    void end(bool isGood, int error, const QString &reason);

    const quint32 m_id;
    const QJsonObject m_description;
    ResourceManager &m_resources;
    QString m_userName;
    std::shared_ptr<OrAuthServerInstanceInfo> m_info;
    std::unique_ptr<HttpRequestTask> m_request;
    std::unique_ptr<OrMCAuthenticateTask> m_authentication;
    std::unique_ptr<MinecraftLauncher> m_chain;
    std::shared_ptr<ReadyForGameClientLaunch> m_clientStep;
    GameLaunchBase::Error m_lastError = GameLaunchBase::ErrUnknown;
    QString m_gameFailure; ///< of the running game
    bool m_hasEnded = false;
};
