#include "host/Host.h"

#include <QEventLoop>
#include <QTimer>

#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/config/GameResConfig.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/foundation/Environment.h"
#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "core/resources/LocalResLoadTask.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "host/Interrupts.h"
#include "host/OfflineLogins.h"
#include "host/Text.h"

namespace {

constexpr int lookMs = 5;

} // namespace

void runUntil(const std::function<bool()> &isDone, OnInterrupt onInterrupt)
{
    Interrupts::watch();
    const auto isCancelled = [onInterrupt] {
        return onInterrupt == OnInterrupt::Throw && Interrupts::count() > 0;
    };
    if (isDone())
        return;
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (isDone() || isCancelled())
            loop.quit();
    });
    look.start(lookMs);
    loop.exec();
    if (isCancelled() && !isDone())
        throw Interrupts::Cancelled();
}

Host::Host(Output &output) : m_output(output)
{
    Environment::GetInstance()->settings()->validateSettingValues();
    const QString local = FSH::localAppDataPath();
    DeployResRecorder::GetInstance()->init(local % QLatin1String("/deploy.cache"));
    DeployGameResRecorder::GetInstance()->init(local % QLatin1String("/deploygame.cache"));
    GameResConfig::GetInstance()->initialize(local % QLatin1String("/gameres.config"));
    OnlineMapResConfig::GetInstance()->initialize(local % QLatin1String("/mapres.config"));
    RivetLoginHost::GetInstance()->changeInitLoginState();
}

Host::~Host() = default;

QString Host::rememberedUser() const
{
    const auto list = RivetUserLoginInfoHelper::GetInstance()->GetRivetUserList();
    const QString user = list->lastLoginUser;
    return list->recordOf(user) ? user : QString();
}

Host::LoginOutcome Host::logInRememberedUser()
{
    const QString user = rememberedUser();
    if (!user.isEmpty())
        return logIn(user);
    m_output.error(Text::tr("nobody is logged in: rivet login USER"));
    return LoginOutcome::Refused;
}

Host::LoginOutcome Host::logIn(const QString &user, const QString &password)
{
    RivetLoginHost *host = RivetLoginHost::GetInstance();
    QObject context;
    bool isAccepted = false;
    QString failure;
    QObject::connect(host, &RivetLoginHost::loginSuccess, &context,
                     [&isAccepted] { isAccepted = true; });
    QObject::connect(host, &RivetLoginHost::loginFailed, &context,
                     [&failure](const QString &, const QString &text) { failure = text; });
    if (password.isEmpty())
        host->LogIn(user, true, true);
    else
        host->LogIn(user, true, true, password);
    runUntil([&] { return isAccepted || !failure.isEmpty(); });
    if (isAccepted) {
        keepLogin(user);
        return LoginOutcome::Online;
    }
    // A wrong password must not open what an earlier one left.
    if (failure == RivetLoginHost::tr("network error") && password.isEmpty() && goOnOffline(user))
        return LoginOutcome::Offline;
    m_output.error(failure);
    return LoginOutcome::Refused;
}

bool Host::goOnOffline(const QString &user)
{
    const auto login = OfflineLogins::of(user);
    if (!login)
        return false;
    RivetUserProfile::GetInstance()->setCurrentProfile(login->answer);
    return RivetUserProfile::GetInstance()->getBid() != 0;
}

/// Keeps the session of an earlier launch, which a later one may need.
void Host::keepLogin(const QString &user)
{
    auto *profile = RivetUserProfile::GetInstance();
    OfflineLogins::Login login = OfflineLogins::of(user).value_or(OfflineLogins::Login());
    login.answer = {{QStringLiteral("code"), QStringLiteral("1")},
                    {QStringLiteral("ortoken"), profile->orToken()},
                    {QStringLiteral("loginAuth"), profile->loginAuth()},
                    {QStringLiteral("oruser_profile"),
                     QJsonObject{{QStringLiteral("login"), profile->userName()},
                                 {QStringLiteral("user"),
                                  QJsonObject::fromVariantMap(profile->userProfileJson())}}}};
    if (!OfflineLogins::keep(user, login))
        qWarning("the login can not be kept for playing without a network");
}

void Host::loadResources()
{
    LocalResLoadTask task(FSH::resourceDownloadBaseDir());
    QObject::connect(&task, &LocalResLoadTask::oneResLoaded, &task,
                     [this](uint id, uint type) { m_resources.addFromDisk(id, type); });
    task.start();
    runUntil([&task] { return task.isFinished(); });
}

void Host::updateInstances()
{
    if (RivetLoginHost::GetInstance()->status() != RivetLoginHost::LoginStatusLoggedIn)
        return;
    MyMcGameInstMgr *list = MyMcGameInstMgr::GetInstance();
    runUntilSignal(*list, &MyMcGameInstMgr::updateFinished, [list] { list->updateList(); });
}
