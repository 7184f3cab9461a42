#include "host/Commands.h"

#include "core/foundation/Environment.h"
#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "host/Host.h"
#include "host/Text.h"

namespace {

constexpr Command table[] = {
    {"login", "USER [--password-stdin]", QT_TRANSLATE_NOOP("host", "log in and stay logged in"), 1,
     1, &Commands::logIn},
    {"logout", "[USER]",
     QT_TRANSLATE_NOOP("host", "forget a user, with all that lets him play offline"), 0, 1,
     &Commands::logOut},
    {"accounts", "", QT_TRANSLATE_NOOP("host", "who has logged in on this machine"), 0, 0,
     &Commands::accounts},
    {"register", "USER CODE [--password-stdin]",
     QT_TRANSLATE_NOOP("host", "make an account; CODE is the verification code"), 2, 2,
     &Commands::registerAccount},
    {"clients", "", QT_TRANSLATE_NOOP("host", "the game clients that the service offers"), 0, 0,
     &Commands::clients},
    {"java", "", QT_TRANSLATE_NOOP("host", "the Java runtimes that the service offers"), 0, 0,
     &Commands::java},
    {"instances", "", QT_TRANSLATE_NOOP("host", "the instances of the user who is logged in"), 0, 0,
     &Commands::instances},
    {"resources",
     "INSTANCE [list | add TYPE ID | remove TYPE ID | ignore TYPE ID | unignore TYPE ID]",
     QT_TRANSLATE_NOOP("host", "the resources of an instance; add and remove are the user's own, "
                               "ignore switches a default off"),
     1, 4, &Commands::resources},
    {"servers", "", QT_TRANSLATE_NOOP("host", "the public servers, with their players"), 0, 0,
     &Commands::servers},
    {"ping", "HOST[:PORT]...",
     QT_TRANSLATE_NOOP("host", "ask game servers for their players, the quickest first"), 1, 1000,
     &Commands::ping},
    {"maps", "MAP [list | add TYPE ID | remove TYPE ID | ignore TYPE ID | unignore TYPE ID]",
     QT_TRANSLATE_NOOP("host", "the resources of a map, as for an instance"), 1, 4,
     &Commands::maps},
    {"mask", "TEXT",
     QT_TRANSLATE_NOOP("host", "the text without the words that the installation hides"), 1, 1,
     &Commands::mask},
    {"tip", "", QT_TRANSLATE_NOOP("host", "a hint"), 0, 0, &Commands::tip},
    {"launch", "INSTANCE",
     QT_TRANSLATE_NOOP("host", "make everything ready, start the game and stay until it ends"), 1,
     1, &Commands::launch},
    {"store", "list | buy PROP [FORM] | mine | use PROP [on | off]",
     QT_TRANSLATE_NOOP(
         "host",
         "what the store sells, and the user's money and props; FORM is one of the ways in which a "
         "prop is sold"),
     1, 3, &Commands::store},
    {"vip", "", QT_TRANSLATE_NOOP("host", "what each VIP level gives"), 0, 0, &Commands::vip},
    {"repair", "quick | java | powerful | dns | firewall [--open] [--yes] [--dry-run]",
     QT_TRANSLATE_NOOP(
         "host",
         "put things right: quick forgets the choice of resources and the Java, java only the "
         "latter, powerful wipes all but the downloads, dns sets a public name server, firewall "
         "lets the launcher through (--open: all, for as long as you want). Asks first, unless "
         "--yes"),
     1, 4, &Commands::repair},
    {"settings", "[KEY [VALUE]]",
     QT_TRANSLATE_NOOP("host", "show or change what the launcher remembers"), 0, 2,
     &Commands::settings},
    {"version", "", QT_TRANSLATE_NOOP("host", "the version of the program"), 0, 0,
     &Commands::version},
    {nullptr, nullptr, nullptr, 0, 0, nullptr},
};

/// The new place is taken over, or dropped, as at a start.
int moveData(Host &host, const QString &folder)
{
    const auto store = Environment::GetInstance()->settings();
    store->validateSettingValues();
    if (store->value(QStringLiteral("DataPath"), QVariant()).toString() == folder)
        return ExitGood;
    host.output().error(Text::tr("the game data can not lie in %1").arg(folder));
    return ExitFailed;
}

} // namespace

namespace Commands {

const Command *all()
{
    return table;
}

const Command *byName(const QString &name)
{
    const Command *command = table;
    while (command->name && name != QLatin1String(command->name))
        ++command;
    return command->name ? command : nullptr;
}

int wrongUsage(const Output &output)
{
    output.error(Text::tr("see rivet --help"));
    return ExitUsage;
}

int settings(Host &host, const QStringList &arguments)
{
    static const char *const keys[] = {
        "DataPath",     "ChangedDataDir",  "JavaPath",           "JavaParam", "channel",
        "notifyupdate", "minimizeOnClose", "ShowTrayBalloonMsg", "oldDns"};
    const auto store = Environment::GetInstance()->settings();
    if (arguments.size() == 2) {
        store->setValue(arguments[0], arguments[1]);
        store->save();
        return arguments[0] == QLatin1String("ChangedDataDir") ? moveData(host, arguments[1])
                                                               : ExitGood;
    }
    QList<QStringList> rows;
    for (const char *key : keys) {
        const QString name = QString::fromLatin1(key);
        if (arguments.isEmpty() || arguments[0] == name)
            rows << QStringList{name, store->value(name, QVariant()).toString()};
    }
    host.output().table({Text::tr("key"), Text::tr("value")}, rows);
    return rows.isEmpty() ? ExitFailed : ExitGood;
}

int version(Host &host, const QStringList &)
{
    const QString shown = FSH::getRivetDisplayVer();
    const uint build = FSH::getRivetIntervalNumVer();
    host.output().line(QStringLiteral("rivet %1 (build %2)").arg(shown).arg(build),
                       {{QStringLiteral("version"), shown}, {QStringLiteral("build"), int(build)}});
    return ExitGood;
}

} // namespace Commands
