#include <cstdlib>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include "bench/LoopPulse.h"
#include "bench/Result.h"
#include "core/resources/LocalResLoadTask.h"
#include "support/jsonfskit/FS.h"

// How long the search for resources on disk takes, and how long the event loop stands still at
// most: rivet-bench-local-load [files]
int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const int files = argc > 1 ? std::atoi(argv[1]) : 10'000;
    const QTemporaryDir base;
    for (int i = 1; i <= files; ++i) {
        const QString path = base.filePath(QStringLiteral("mods/%1.inf").arg(i));
        if (!FS::ensureFilePathExists(path) || !QFile(path).open(QIODevice::WriteOnly))
            return EXIT_FAILURE;
    }

    LoopPulse pulse;
    QElapsedTimer total;
    LocalResLoadTask task(base.path());
    int found = 0;
    QObject::connect(&task, &LocalResLoadTask::oneResLoaded, [&] { ++found; });
    QObject::connect(&task, &TaskAbstract::finished, &app, &QCoreApplication::quit);
    pulse.start();
    total.start();
    task.start();
    QCoreApplication::exec();
    printResult(QStringLiteral("finding them"), double(total.nsecsElapsed()) / 1e6, "ms",
                "< 1500 ms");
    printResult(QStringLiteral("longest turn of the event loop"), pulse.longestTurnMs(), "ms",
                "<= 20 ms");
    return found == files ? EXIT_SUCCESS : EXIT_FAILURE;
}
