#include <iostream>
#include <optional>
#include <string>

#include <QCoreApplication>
#include <QDateTime>

#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserRegister.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "host/Commands.h"
#include "host/Host.h"
#include "host/OfflineLogins.h"
#include "host/Text.h"
#include "platform/Terminal.h"

namespace {

/// From the terminal, unseen; or the first line of the standard input, for --password-stdin.
QString askForPassword()
{
    const bool isFromInput =
        QCoreApplication::arguments().contains(QLatin1String("--password-stdin"));
    if (!isFromInput)
        return platform::Terminal::readSecret(Text::tr("Password: ")).value_or(QString());
    std::string line;
    std::getline(std::cin, line);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return QString::fromStdString(line);
}

} // namespace

namespace Commands {

int logIn(Host &host, const QStringList &arguments)
{
    const QString password = askForPassword();
    if (password.isEmpty()) {
        host.output().error(
            Text::tr("a password is needed: at the terminal, or by --password-stdin"));
        return ExitUsage;
    }
    if (host.logIn(arguments[0], password) != Host::LoginOutcome::Online)
        return ExitFailed;
    auto *profile = RivetUserProfile::GetInstance();
    host.output().line(
        Text::tr("logged in as %1, account %2").arg(profile->userName()).arg(profile->getBid()),
        {{QStringLiteral("user"), profile->userName()},
         {QStringLiteral("bid"), double(profile->getBid())}});
    return ExitGood;
}

int logOut(Host &host, const QStringList &arguments)
{
    const QString user = arguments.value(0, host.rememberedUser());
    if (user.isEmpty()) {
        host.output().error(Text::tr("nobody is logged in"));
        return ExitFailed;
    }
    RivetLoginHost::GetInstance()->LogOut();
    RivetUserLoginInfoHelper::GetInstance()->RemoveAccount(user);
    if (!OfflineLogins::forget(user)) {
        host.output().error(Text::tr("what lets %1 play offline can not be removed").arg(user));
        return ExitFailed;
    }
    host.output().line(Text::tr("%1 is logged out").arg(user), {{QStringLiteral("user"), user}});
    return ExitGood;
}

int accounts(Host &host, const QStringList &)
{
    const auto list = RivetUserLoginInfoHelper::GetInstance()->GetRivetUserList();
    QList<QStringList> rows;
    for (auto user = list->users.begin(); user != list->users.end(); ++user) {
        const qint64 last = *user ? qint64((*user)->lastLoginTime) : 0;
        rows << QStringList{user.key(),
                            last > 0 ? QDateTime::fromSecsSinceEpoch(last).toString(Qt::ISODate)
                                     : QString(),
                            user.key() == list->lastLoginUser ? Text::tr("yes") : QString()};
    }
    host.output().table({Text::tr("user"), Text::tr("last login"), Text::tr("current")}, rows);
    return ExitGood;
}

int registerAccount(Host &host, const QStringList &arguments)
{
    auto *registration = RivetUserRegister::GetInstance();
    std::optional<bool> outcome;
    QString reason;
    QObject context;
    QObject::connect(registration, &RivetUserRegister::registerSuccess, &context,
                     [&outcome] { outcome = true; });
    QObject::connect(registration, &RivetUserRegister::registerFailed, &context,
                     [&](const QString &, const QString &description) {
                         outcome = false;
                         reason = description;
                     });
    registration->registerAccount(arguments[0], askForPassword(), arguments.value(1));
    runUntil([&outcome] { return outcome.has_value(); });
    if (!*outcome) {
        host.output().error(reason.isEmpty() ? Text::tr("the service refuses the account")
                                             : reason);
        return ExitFailed;
    }
    host.output().line(Text::tr("%1 is registered").arg(arguments[0]),
                       {{QStringLiteral("user"), arguments[0]}});
    return ExitGood;
}

} // namespace Commands
