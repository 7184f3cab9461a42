// rivet: a launcher on the command line, and the example that host developers read.

#include <cstdio>

#include <QCoreApplication>
#include <QLocale>
#include <QSettings>
#include <QTranslator>

#include "host/Columns.h"
#include "host/Commands.h"
#include "host/Host.h"
#include "host/Interrupts.h"
#include "host/Output.h"
#include "host/Text.h"
#include "platform/Terminal.h"
#include "support/coresupport/ServiceUrls.h"

namespace {

constexpr int usageColumns = 85; // as wide as the paragraphs of the usage
constexpr int summaryIndent = 6;

void printUsage()
{
    const auto print = [](const QString &text) { std::fputs(qUtf8Printable(text), stdout); };
    print(Text::tr("rivet - a launcher for Minecraft on the command line\n\n"
                   "usage: rivet [OPTION...] COMMAND [ARGUMENT...]\n\n"));
    for (const Command *command = Commands::all(); command->name; ++command) {
        const QString line = QLatin1String("  ") % QLatin1String(command->name) % QLatin1Char(' ') %
                             QLatin1String(command->arguments);
        const QString summary =
            QString(summaryIndent, QLatin1Char(' ')) % Text::tr(command->summary);
        print(Columns::wrapped(line, usageColumns, summaryIndent) % QLatin1Char('\n') %
              Columns::wrapped(summary, usageColumns, summaryIndent) % QLatin1Char('\n'));
    }
    print(Text::tr(
        "\n"
        "  --json           one JSON object a line in the place of text, in English\n"
        "  --service URL    the web service; the variable RIVET_SERVICE_URL goes before it\n"
        "  --language NAME  such as zh_CN or en, in the place of the system's language\n"
        "  --verbose        the log of the core on the standard error output\n"
        "  --help           this text\n\n"
        "INSTANCE is the number or the name of an instance. TYPE is 1 mod, 2 save, 3 resource\n"
        "pack, 7 other, 8 shader pack.\n\n"));
    print(Text::tr(
        "exit code: 0 done; 1 failed; 2 wrong usage; 130 cancelled. A launch that fails, and\n"
        "a game that does, give 10 and the number of the error: 10 unknown, 12 no list of\n"
        "resources, 13 download failed, 14 download stopped, 15 deployment failed, 16 the\n"
        "game did not start, 17 it crashed, 18 or 19 other trouble with its process, 23 its\n"
        "mods were changed while it ran, 24 log in again.\n\n"
        "Ctrl-C aborts what runs, or ends the game, in good order; a second one at once.\n"));
}

/// The log of the core is for developers.
void dropLog(QtMsgType, const QMessageLogContext &, const QString &) {}

/// Takes @p option out of @p arguments; true if it was there.
bool takeFlag(QStringList &arguments, const char *option)
{
    return arguments.removeAll(QLatin1String(option)) > 0;
}

/// The same for one with a value behind it; empty if it was not there.
QString takeValue(QStringList &arguments, const char *option)
{
    const int at = arguments.indexOf(QLatin1String(option));
    if (at < 0 || at + 1 >= arguments.size())
        return {};
    arguments.removeAt(at);
    return arguments.takeAt(at);
}

void setUp()
{
    QCoreApplication::setOrganizationName(QStringLiteral("oriel"));
    QCoreApplication::setApplicationName(QStringLiteral("rivet"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    platform::Terminal::prepare();
}

/// Speaks the language that the user names, else the system's; English where there is no
/// translation.
void chooseLanguage(const QString &name)
{
    static QTranslator translator;
    const QLocale language = name.isEmpty() ? QLocale() : QLocale(name);
    if (translator.load(language, QStringLiteral("rivet"), QStringLiteral("_"),
                        QStringLiteral(":/rivet/translations")))
        QCoreApplication::installTranslator(&translator);
}

int runCommand(QStringList arguments, Output::Form form)
{
    Output output(form);
    if (!takeFlag(arguments, "--verbose"))
        qInstallMessageHandler(&dropLog);
    const QString service = takeValue(arguments, "--service");
    if (!service.isEmpty() && !ServiceUrls::setBaseAddress(service)) {
        output.error(Text::tr("no address of a service: %1").arg(service));
        return ExitUsage;
    }
    takeFlag(arguments, "--password-stdin"); // the commands look for it themselves
    const Command *command = arguments.isEmpty() ? nullptr : Commands::byName(arguments[0]);
    const int count = arguments.size() - 1;
    if (!command || count < command->fewestArguments || count > command->mostArguments)
        return Commands::wrongUsage(output);
    try {
        Host host(output);
        return command->run(host, arguments.mid(1));
    } catch (const Interrupts::Cancelled &) {
        output.error(Text::tr("cancelled"));
        return ExitCancelled;
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    setUp();
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool isJson = takeFlag(arguments, "--json");
    const QString language = takeValue(arguments, "--language");
    // What programs read does not change with the user's language.
    if (!isJson)
        chooseLanguage(language);
    const bool isHelpWanted = takeFlag(arguments, "--help");
    if (isHelpWanted || arguments.isEmpty()) {
        printUsage();
        return isHelpWanted ? ExitGood : ExitUsage;
    }
    return runCommand(arguments, isJson ? Output::Form::Json : Output::Form::Text);
}
