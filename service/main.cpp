#include <cstdio>
#include <thread>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "service/HttpServer.h"
#include "service/Service.h"
#include "service/StatusServer.h"
#include "support/jsonfskit/Log.h"

namespace {

struct Options
{
    QString data;
    QString stateFile;
    quint16 port = 0;
    quint16 gamePort = 0;
    QStringList faults;
};

Options readOptions(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Plays the launcher's web services, its download server and a game server, on loopback."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("data"), QStringLiteral("The data folder."));
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("HTTP port; any free one without it."),
                                  QStringLiteral("port"), QStringLiteral("0"));
    const QCommandLineOption gamePort(QStringLiteral("game-port"),
                                      QStringLiteral("Port of the game server's status."),
                                      QStringLiteral("port"), QStringLiteral("0"));
    const QCommandLineOption state(
        QStringLiteral("state"),
        QStringLiteral("Folder for what happens; without it, <data>-state."),
        QStringLiteral("folder"));
    const QCommandLineOption fault(
        QStringLiteral("fault"),
        QStringLiteral("What goes wrong, such as \"path=/files/&drop=0.1\"; more than once."),
        QStringLiteral("words"));
    parser.addOptions({port, gamePort, state, fault});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    Options options;
    options.data = QDir::cleanPath(parser.positionalArguments().constFirst());
    const QString folder =
        parser.isSet(state) ? parser.value(state) : QString(options.data % QLatin1String("-state"));
    options.stateFile = folder % QLatin1String("/accounts.json");
    options.port = parser.value(port).toUShort();
    options.gamePort = parser.value(gamePort).toUShort();
    options.faults = parser.values(fault);
    return options;
}

bool applyFaults(Faults &faults, const QStringList &commands)
{
    try {
        for (const QString &command : commands)
            faults.command(QUrlQuery(command));
    } catch (const Refusal &refusal) {
        Log::critical(refusal.message);
        return false;
    }
    return true;
}

int serve(const Options &options)
{
    Service service(options.data, options.stateFile);
    if (!applyFaults(service.faults(), options.faults))
        return 2;
    HttpServer http([&](const Call &call) { return service.answer(call); }, service.faults(),
                    service.traffic());
    StatusServer game([&] { return service.gameStatus(); }, service.faults(), service.traffic());
    const quint16 port = http.bind(options.port);
    if (port == 0 || !game.listen(QHostAddress::LocalHost, options.gamePort)) {
        Log::critical(QStringLiteral("a port is taken, or may not be used"));
        return 1;
    }
    const QByteArray base = "http://127.0.0.1:" + QByteArray::number(port);
    const QByteArray gameAddress = "127.0.0.1:" + QByteArray::number(game.serverPort());
    service.data().setPlaceholder("base", base);
    service.data().setPlaceholder("game", gameAddress);
    std::printf("listening on %s\ngame status on %s\n", base.constData(), gameAddress.constData());
    std::fflush(stdout);

    std::thread thread([&] { http.run(); });
    const int result = QCoreApplication::exec();
    http.stop();
    thread.join();
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Options options = readOptions(application);
    if (!QFileInfo(options.data).isDir()) {
        Log::critical(options.data % QLatin1String(" is no folder"));
        return 1;
    }
    return serve(options);
}
