#pragma once

#include <QString>
#include <QStringList>

class Host;
class Output;

/// How the command ends.
enum ExitCode {
    ExitGood = 0,
    ExitFailed = 1,
    ExitUsage = 2,
    ExitLaunchFailed = 10, ///< to which the number of the launch's error is added
    ExitCancelled = 130,
};

/// What the command line can say.
struct Command
{
    const char *name;
    const char *arguments; ///< as the usage shows them
    const char *summary;   ///< the source of a text for the user, in the context "host"
    int fewestArguments;
    int mostArguments;
    int (*run)(Host &host, const QStringList &arguments);
};

namespace Commands {

/// Ends with an entry whose name is null.
const Command *all();
const Command *byName(const QString &name);

/// Says that the usage is wrong; the exit code for that.
int wrongUsage(const Output &output);

// Accounts
int logIn(Host &host, const QStringList &arguments);
int logOut(Host &host, const QStringList &arguments);
int accounts(Host &host, const QStringList &arguments);
int registerAccount(Host &host, const QStringList &arguments);
// Lists
int clients(Host &host, const QStringList &arguments);
int java(Host &host, const QStringList &arguments);
int instances(Host &host, const QStringList &arguments);
int resources(Host &host, const QStringList &arguments);
// Servers
int servers(Host &host, const QStringList &arguments);
int ping(Host &host, const QStringList &arguments);
int maps(Host &host, const QStringList &arguments);
int mask(Host &host, const QStringList &arguments);
int tip(Host &host, const QStringList &arguments);
// Launch
int launch(Host &host, const QStringList &arguments);
// Store
int store(Host &host, const QStringList &arguments);
int vip(Host &host, const QStringList &arguments);
// Repair
int repair(Host &host, const QStringList &arguments);
// The program
int settings(Host &host, const QStringList &arguments);
int version(Host &host, const QStringList &arguments);

} // namespace Commands
