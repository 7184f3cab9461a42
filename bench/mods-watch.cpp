#include <cstdlib>
#include <ctime>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include "bench/Result.h"
#include "core/launch/LaunchMcProcessFSW.h"
#include "support/jsonfskit/FS.h"

// How long a launch takes to set up the watch over a mods folder: rivet-bench-mods-watch [mods]
int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const int mods = argc > 1 ? std::atoi(argv[1]) : 5000;
    const QTemporaryDir instance;
    for (int i = 0; i < mods; ++i) {
        const QString name = QStringLiteral("mods/pack-%1/a-mod-with-a-usual-name-%2.jar");
        QString path = instance.filePath(name.arg(i / 100).arg(i));
        if (!FS::ensureFilePathExists(path) || !QFile(path).open(QIODevice::WriteOnly))
            return 1;
    }

    LaunchMcProcessFSW game(QStringLiteral("7"));
    game.setArgs(LaunchMcProcess::ArgInstanceDir, instance.path());
    QElapsedTimer timer;
    std::clock_t begin = 0;
    // The launch is being prepared as soon as the watch stands; without arguments it ends there.
    QObject::connect(&game, &LaunchMcProcess::processStateChange, &game, [&](int state) {
        if (state != LaunchMcProcess::StatePreparing)
            return;
        printResult(QStringLiteral("set up"), double(timer.nsecsElapsed()) / 1e6, "ms", "< 300 ms");
        printResult(QStringLiteral("processor time"),
                    1000.0 * double(std::clock() - begin) / CLOCKS_PER_SEC, "ms");
    });
    begin = std::clock();
    timer.start();
    game.start();
    return 0;
}
