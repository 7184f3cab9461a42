#include "host/LaunchInstance.h"

#include <QJsonArray>

#include "core/accounts/RivetUserProfile.h"
#include "core/config/GameResConfig.h"
#include "core/foundation/Environment.h"
#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "core/launch/MinecraftLauncher.h"
#include "core/launch/ReadyForGameClientLaunch.h"
#include "core/launch/ReadyForJava.h"
#include "core/launch/ReadyForMinecraftFiles.h"
#include "core/launch/ReadyForOtherRes.h"
#include "core/launch/ReadyForSelectLine.h"
#include "host/OfflineLogins.h"
#include "host/ResourceManager.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"

namespace {

constexpr unsigned int authenticationTimeoutMs = 15000;

/// The shares of the steps in the progress bar; the downloads take the time.
enum Weight : quint16 {
    JavaWeight = 20,
    ClientWeight = 40,
    OtherWeight = 30,
    LineWeight = 1,
    GameWeight = 9,
};

QJsonArray arrayIn(const QJsonObject &object, const char *key)
{
    return object[QLatin1String(key)].toArray();
}

/// A number or a decimal string, as the service sends both.
quint32 numberIn(const QJsonValue &value)
{
    return value.isString() ? value.toString().toUInt() : static_cast<quint32>(value.toInt());
}

} // namespace

LaunchInstance::LaunchInstance(quint32 id, const QJsonObject &description,
                               ResourceManager &resources)
    : m_id(id), m_description(description), m_resources(resources)
{
}

LaunchInstance::~LaunchInstance() = default;

QString LaunchInstance::instanceName()
{
    return m_description[QLatin1String("name")].toString();
}

QString LaunchInstance::clientVersion()
{
    return m_description[QLatin1String("ver")].toString();
}

QString LaunchInstance::instanceDir()
{
    return FSH::instancePathDir(m_id, instanceName());
}

void LaunchInstance::start(QJsonObject json)
{
    setLaunching(true);
    m_userName = json[QLatin1String("user")].toString();
    m_info = std::make_shared<OrAuthServerInstanceInfo>();
    m_info->id = m_id;
    m_info->windowTitle = m_description[QLatin1String("title")].toString();
    m_info->sid = m_description[QLatin1String("sid")].toString();
    QJsonArray types = arrayIn(m_description, "resTypes");
    if (types.isEmpty())
        types = {1, 3, 7, 8};
    for (const QJsonValue &type : qAsConst(types))
        m_info->resTypes.insert(numberIn(type), {});
    takeDefaultsOfService();
    authenticate();
}

/// The service says which resources belong to the instance; the user may ignore some of them.
void LaunchInstance::takeDefaultsOfService()
{
    if (!m_description.contains(QLatin1String("resources")))
        return;
    QSet<quint64> keys;
    const QJsonArray resources = arrayIn(m_description, "resources");
    for (const QJsonValue &resource : resources) {
        keys += ResourceKey::pack(numberIn(resource[QLatin1String("id")]),
                                  ResType(numberIn(resource[QLatin1String("type")])));
    }
    GameResConfig::GetInstance()->updateGameInstConfigFromRemote(m_id, keys, true);
}

void LaunchInstance::authenticate()
{
    Q_EMIT stage(tr("get a game session"));
    auto *profile = RivetUserProfile::GetInstance();
    const QByteArray token = QUrl::toPercentEncoding(profile->orToken());
    const QString url = ServiceUrls::baseAddress() % QLatin1String("/game/auth?bid=") %
                        QString::number(profile->getBid()) % QLatin1String("&token=") %
                        QString::fromLatin1(token);
    m_request =
        std::make_unique<HttpRequestTask>(url, nullptr, authenticationTimeoutMs, 0, nullptr);
    m_request->SetNetworkAccessManager(Environment::GetInstance()->getShareNetworkAccessMgr());
    m_authentication = std::make_unique<OrMCAuthenticateTask>();
    m_authentication->SetHttpRequestTask(m_request.get());
    connect(m_authentication.get(), &TaskAbstract::finished, this,
            &LaunchInstance::onAuthenticated);
    m_authentication->start();
}

void LaunchInstance::onAuthenticated()
{
    if (m_hasEnded)
        return;
    if (m_authentication->GetAuthenticateStatus() ==
        OrMCAuthenticateTaskAbstract::AuthStatusNetworkError) {
        playOffline();
        return;
    }
    if (!m_authentication->successful()) {
        end(false, GameLaunchBase::ErrNeedLogin, m_authentication->failReason());
        return;
    }
    m_authentication->FillAuthSession(m_info->session);
    m_info->session.SetCurrentOrBid(RivetUserProfile::GetInstance()->getBid());
    auto login = OfflineLogins::of(m_userName);
    if (login && m_info->session.IsSessionValid(m_info->session.GetCurrentOrBid())) {
        login->session = m_info->session;
        if (!OfflineLogins::keep(m_userName, *login))
            Q_EMIT notice(tr("the game session can not be kept for playing without a network"));
    }
    runChain();
}

void LaunchInstance::playOffline()
{
    const auto login = OfflineLogins::of(m_userName);
    if (!login || !login->session.IsSessionValid(RivetUserProfile::GetInstance()->getBid())) {
        end(false, GameLaunchBase::ErrNeedLogin, m_authentication->failReason());
        return;
    }
    Q_EMIT notice(tr("the service can not be reached, playing with the last session"));
    m_info->session = login->session;
    runChain();
}

void LaunchInstance::buildChain()
{
    const auto self = std::static_pointer_cast<LaunchInstance>(shared_from_this());
    const auto lines = std::make_shared<ReadyForSelectLine>(m_info, self, &m_resources, nullptr);
    QList<QString> addresses;
    const QJsonArray described = arrayIn(m_description, "lines");
    for (const QJsonValue &line : described)
        addresses += line.toString();
    lines->setServerAddressList(addresses);

    m_clientStep = std::make_shared<ReadyForGameClientLaunch>(m_info, self, &m_resources, nullptr);
    m_clientStep->SetRivetUserProfile(RivetUserProfile::GetInstance());
    m_clientStep->SetMCSettings(Environment::GetInstance()->settings().get());

    m_chain = std::make_unique<MinecraftLauncher>();
    m_chain->AppendLanuchTask(std::make_shared<ReadyForJava>(self, &m_resources, nullptr),
                              JavaWeight);
    m_chain->AppendLanuchTask(std::make_shared<ReadyForMinecraftFiles>(self, &m_resources, nullptr),
                              ClientWeight);
    m_chain->AppendLanuchTask(
        std::make_shared<ReadyForOtherRes>(m_info, self, &m_resources, nullptr), OtherWeight);
    m_chain->AppendLanuchTask(lines, LineWeight);
    m_chain->AppendLanuchTask(m_clientStep, GameWeight);
}

void LaunchInstance::runChain()
{
    buildChain();
    connect(m_chain.get(), &TaskAbstract::taskBrief, this, &LaunchInstance::stage);
    connect(m_chain.get(), &TaskAbstract::status, this, &LaunchInstance::status);
    connect(m_chain.get(), &TaskAbstract::progress, this,
            [this](quint64 current) { Q_EMIT progress(int(current)); });
    connect(m_chain.get(), &GameLaunchBase::error, this,
            [this](GameLaunchBase::Error error) { m_lastError = error; });
    connect(m_chain.get(), &TaskAbstract::failed, this, &LaunchInstance::onGameFailed);
    connect(m_chain.get(), &TaskAbstract::finished, this, &LaunchInstance::onChainFinished);
    // AppendLanuchTask() has dropped what was connected before.
    connect(m_clientStep.get(), &ReadyForGameClientLaunch::gameProcessFinished, this, [this] {
        if (m_gameFailure.isEmpty())
            end(true, GameLaunchBase::ErrUnknown, {});
        else
            end(false, m_lastError, m_gameFailure);
    });
    m_chain->start();
}

void LaunchInstance::onChainFinished()
{
    setLaunching(false);
    if (!m_chain->successful()) {
        end(false, m_lastError, m_chain->failReason());
        return;
    }
    setRunning(true);
    Q_EMIT gameStarted();
}

/// Until the chain has ended, its own end tells the failure.
void LaunchInstance::onGameFailed(const QString &reason)
{
    if (m_chain->isFinished() && m_chain->successful())
        m_gameFailure = reason;
}

void LaunchInstance::stop()
{
    if (!m_chain)
        end(false, GameLaunchBase::ErrUserCancel, tr("user cancel"));
    else if (!m_clientStep->stopGame())
        m_chain->abort();
}

void LaunchInstance::end(bool isGood, int error, const QString &reason)
{
    if (std::exchange(m_hasEnded, true))
        return;
    setLaunching(false);
    setRunning(false);
    // The chain is still inside a signal of its own.
    QMetaObject::invokeMethod(
        this, [this, isGood, error, reason] { Q_EMIT ended(isGood, error, reason); },
        Qt::QueuedConnection);
}
