#include <optional>
#include <utility>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QLocale>
#include <QNetworkInterface>
#include <QThreadPool>

#include "core/foundation/FSH.h"
#include "core/repair/CWinFirewallControl.h"
#include "core/repair/DnsHelper.h"
#include "core/repair/QuickRepairTask.h"
#include "core/repair/RepairDnsTask.h"
#include "core/repair/RepairFileDeployTask.h"
#include "core/repair/RepairJavaEnvTask.h"
#include "core/repair/RepairOptimizeSysMemoryTask.h"
#include "core/repair/RepairPowerfulTask.h"
#include "host/Commands.h"
#include "host/DataLock.h"
#include "host/Host.h"
#include "host/Interrupts.h"
#include "host/Text.h"
#include "platform/Terminal.h"

namespace {

struct Wishes
{
    bool isSure = false;   ///< --yes
    bool isDryRun = false; ///< --dry-run
    bool opensAll = false; ///< --open
};

/// Whether to do it, after what will be done has been told; if not, with the exit code.
std::optional<ExitCode> refusal(Host &host, const Wishes &wishes, const QString &question)
{
    if (wishes.isDryRun)
        return ExitGood;
    if (wishes.isSure)
        return std::nullopt;
    Interrupts::watch();
    const auto answer = platform::Terminal::readLine(question % Text::tr(" [y/N] "));
    if (Interrupts::count() > 0)
        throw Interrupts::Cancelled();
    if (!answer) {
        host.output().error(Text::tr("there is no terminal to ask at: give --yes or --dry-run"));
        return ExitUsage;
    }
    const QString word = answer->trimmed().toLower();
    if (word == QLatin1String("y") || word == QLatin1String("yes"))
        return std::nullopt;
    host.output().error(Text::tr("cancelled"));
    return ExitCancelled;
}

/// Runs the task and shows what it says.
ExitCode run(Host &host, TaskAbstract &task, OnInterrupt onInterrupt = OnInterrupt::Throw)
{
    QObject context;
    QObject::connect(&task, &TaskAbstract::taskBrief, &context, [&host](const QString &brief) {
        host.output().line(brief, {{QStringLiteral("event"), QStringLiteral("stage")},
                                   {QStringLiteral("text"), brief}});
    });
    QObject::connect(&task, &TaskAbstract::status, &context,
                     [&host](const QString &line) { host.output().notice(line); });
    task.start();
    bool isTold = false;
    const auto hasEnded = [&] {
        if (onInterrupt == OnInterrupt::GoOn && Interrupts::count() > 0 &&
            !std::exchange(isTold, true))
            host.output().notice(Text::tr("what has begun goes on to its end"));
        return task.isFinished();
    };
    runUntil(hasEnded, onInterrupt);
    if (!task.successful()) {
        host.output().error(task.failReason());
        return ExitFailed;
    }
    host.output().line(Text::tr("the repair is done"),
                       {{QStringLiteral("event"), QStringLiteral("done")}});
    return ExitGood;
}

// --- Java and the choice of resources ------------------------------------------------------------

/// A Java of the user's own leaves the deployed one where it is.
void tellOfJava(Host &host)
{
    const QString folder = RepairJavaEnvTask::folderToRemove();
    host.output().line(folder.isEmpty()
                           ? Text::tr("no deployed Java goes")
                           : Text::tr("goes: %1").arg(QDir::toNativeSeparators(folder)),
                       {{QStringLiteral("goes"), folder}});
    host.output().line(Text::tr("goes back to the default: JavaPath, JavaParam"),
                       {{QStringLiteral("reset"), QStringLiteral("JavaPath JavaParam")}});
}

ExitCode repairJava(Host &host, const Wishes &wishes)
{
    tellOfJava(host);
    if (const auto end = refusal(host, wishes, Text::tr("Repair Java?")))
        return *end;
    RepairJavaEnvTask task;
    return run(host, task);
}

/// What the first step forgets reaches the disk at the end of the core.
ExitCode repairQuickly(Host &host, const Wishes &wishes)
{
    host.output().line(
        Text::tr("forgotten: the resources added to instances, the defaults ignored"),
        {{QStringLiteral("reset"), QStringLiteral("resources")}});
    tellOfJava(host);
    if (const auto end = refusal(host, wishes, Text::tr("Repair?")))
        return *end;
    QuickRepairTask task;
    task.AppendRepairTask(std::make_shared<RepairFileDeployTask>());
    task.AppendRepairTask(std::make_shared<RepairJavaEnvTask>());
    task.AppendRepairTask(std::make_shared<RepairOptimizeSysMemoryTask>());
    return run(host, task);
}

// --- All deployed data ---------------------------------------------------------------------------

/// Tells how much lies in @p folder, but not in @p except.
void tellOfFiles(Host &host, const char *key, const QString &line, const QString &folder,
                 const QString &except = {})
{
    qint64 files = 0, bytes = 0;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!except.isEmpty() && path.startsWith(except % QLatin1Char('/')))
            continue;
        ++files;
        bytes += it.fileInfo().isSymLink() ? 0 : it.fileInfo().size();
    }
    host.output().line(line.arg(QString::number(files), QLocale::c().formattedDataSize(bytes, 1),
                                QDir::toNativeSeparators(folder)),
                       {{QLatin1String(key), folder},
                        {QStringLiteral("files"), double(files)},
                        {QStringLiteral("bytes"), double(bytes)}});
}

/// What has begun is brought to its end: a part of the data is of no use to anybody.
ExitCode repairPowerfully(Host &host, const Wishes &wishes)
{
    const QString downloads = FSH::resourceDownloadBaseDir();
    tellOfFiles(host, "goes", Text::tr("goes: %1 files, %2, in %3"), FSH::gameDataAbsolutePath(),
                downloads);
    tellOfFiles(host, "stays", Text::tr("stays: %1 files, %2, in %3"), downloads);
    const QString question = Text::tr(
        "All games, saves and settings of all instances go. No game may be running, not even "
        "one whose launcher has gone. Wipe them?");
    if (const auto end = refusal(host, wishes, question))
        return *end;
    RepairPowerfulTask task;
    return run(host, task, OnInterrupt::GoOn);
}

// --- The name server -----------------------------------------------------------------------------

QString orNone(const QString &address)
{
    return address.isEmpty() ? Text::tr("none") : address;
}

void tellNameServer(Host &host, const QString &line, const QString &address)
{
    host.output().line(line.arg(orNone(address)), {{QStringLiteral("dns"), address}});
}

ExitCode repairDns(Host &host, const Wishes &wishes)
{
    const QString wanted = RepairDnsTask::g_default_dns_addr;
    const QString old = DnsHelper().GetDns();
    tellNameServer(host, Text::tr("the name server is %1"), old);
    tellNameServer(host, Text::tr("it becomes %1 on"), wanted);
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &each : interfaces) {
        const QString name = each.humanReadableName();
        if (each.flags().testFlag(QNetworkInterface::IsRunning))
            host.output().line(QLatin1String("  ") % name, {{QStringLiteral("interface"), name}});
    }
    if (const auto end = refusal(host, wishes, Text::tr("Replace the name server?")))
        return *end;
    RepairDnsTask task;
    const ExitCode code = run(host, task);
    // The task tells its end before that of its work.
    runUntil([] { return QThreadPool::globalInstance()->waitForDone(0); });
    const QString now = DnsHelper().GetDns();
    tellNameServer(host, Text::tr("the name server is %1"), now);
    tellNameServer(host, Text::tr("it was %1, in case that is to come back"), old);
    if (now == wanted)
        return code;
    host.output().error(Text::tr("it did not change; that takes the rights of an administrator"));
    return ExitFailed;
}

// --- The firewall --------------------------------------------------------------------------------

/// Lets the launcher's programs through, or only shows them.
ExitCode addExceptions(Host &host, CWinFirewallControl *control)
{
    ExitCode code = ExitGood;
    QList<QStringList> rows;
    for (const RuleInfo &rule : CWinFirewallControl::launcherPrograms()) {
        QStringList row{rule.ruleName, rule.appName};
        if (control) {
            const bool isAdded = control->addExceptionPrograms(rule);
            row << Text::yesOrNo(isAdded);
            if (!isAdded)
                code = ExitFailed;
        }
        rows << row;
    }
    QStringList head{Text::tr("exception"), Text::tr("program")};
    if (control)
        head << Text::tr("added");
    host.output().table(head, rows);
    return code;
}

/// The firewall is off until the user has had enough of that, or the process ends in good order.
ExitCode holdOpen(Host &host, CWinFirewallControl &control)
{
    Interrupts::watch();
    Interrupts::setGuarded(true);
    control.setFirewallPolicy();
    FirewallState state;
    const bool isOff = control.get_FirewallState(state) && !state.enabled;
    if (isOff && Interrupts::count() == 0 &&
        !platform::Terminal::readLine(Text::tr("The firewall is off. Enter puts it back. ")))
        runUntil([] { return Interrupts::count() > 0; }, OnInterrupt::GoOn);
    control.resumeFirewallPolicy();
    Interrupts::setGuarded(false);
    if (isOff)
        host.output().line(Text::tr("the firewall is as it was"),
                           {{QStringLiteral("open"), false}});
    else
        host.output().error(Text::tr("the firewall can not be switched off"));
    return isOff ? ExitGood : ExitFailed;
}

ExitCode repairFirewall(Host &host, const Wishes &wishes)
{
    CWinFirewallControl control;
    const QString question =
        wishes.opensAll ? Text::tr("Add these exceptions, and switch the firewall off for now?")
                        : Text::tr("Add these exceptions to the firewall?");
    if (!wishes.isSure || wishes.isDryRun)
        addExceptions(host, nullptr);
    if (const auto end = refusal(host, wishes, question))
        return *end;
    const ExitCode added = addExceptions(host, &control);
    if (added != ExitGood)
        host.output().error(
            Text::tr("not all were added; that takes the rights of an administrator"));
    const ExitCode opened = wishes.opensAll ? holdOpen(host, control) : ExitGood;
    return added == ExitGood ? opened : added;
}

// -------------------------------------------------------------------------------------------------

struct Kind
{
    const char *name;
    bool changesData;
    ExitCode (*run)(Host &host, const Wishes &wishes);
};

constexpr Kind kinds[] = {{"quick", true, &repairQuickly},
                          {"dns", false, &repairDns},
                          {"java", true, &repairJava},
                          {"powerful", true, &repairPowerfully},
                          {"firewall", false, &repairFirewall}};

ExitCode runAlone(Host &host, const Kind &kind, const Wishes &wishes)
{
    const auto lock = DataLock::forRepair();
    if (!lock) {
        host.output().error(Text::tr("a launch or another repair is under way"));
        return ExitFailed;
    }
    // Work that a cancelled repair has begun goes on, under the lock.
    const struct Rest
    {
        ~Rest() { QThreadPool::globalInstance()->waitForDone(); }
    } rest;
    return kind.run(host, wishes);
}

} // namespace

int Commands::repair(Host &host, const QStringList &arguments)
{
    QStringList words = arguments;
    Wishes wishes;
    wishes.isSure = words.removeAll(QStringLiteral("--yes")) > 0;
    wishes.isDryRun = words.removeAll(QStringLiteral("--dry-run")) > 0;
    wishes.opensAll = words.removeAll(QStringLiteral("--open")) > 0;
    for (const Kind &kind : kinds) {
        const bool isMeant = words.size() == 1 && words[0] == QLatin1String(kind.name);
        if (isMeant && (!wishes.opensAll || kind.run == &repairFirewall))
            return kind.changesData && !wishes.isDryRun ? runAlone(host, kind, wishes)
                                                        : kind.run(host, wishes);
    }
    return Commands::wrongUsage(host.output());
}
