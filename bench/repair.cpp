#include <cstdlib>

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "bench/LoopPulse.h"
#include "bench/Result.h"
#include "core/config/GameResConfig.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/RepairPowerfulTask.h"

// Wipes a game data directory, and tells how long the event loop stands still at most:
// rivet-bench-repair FOLDER
int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 2)
        return EXIT_FAILURE;
    const QTemporaryDir own;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, own.path());
    qputenv("XDG_DATA_HOME", own.path().toUtf8()); // where the records lie
    const RivetCoreAtExitManagerUtil core;
    Environment::GetInstance()->settings()->setValue(QStringLiteral("DataPath"),
                                                     QString::fromLocal8Bit(argv[1]));
    DeployResRecorder::GetInstance()->init(own.filePath(QStringLiteral("deploy.cache")));
    DeployGameResRecorder::GetInstance()->init(own.filePath(QStringLiteral("deploygame.cache")));
    GameResConfig::GetInstance()->initialize(own.filePath(QStringLiteral("gameres.config")));

    LoopPulse pulse;
    RepairPowerfulTask task;
    QObject::connect(&task, &TaskAbstract::finished, &app, &QCoreApplication::quit);
    pulse.start();
    task.start();
    QCoreApplication::exec();
    printResult(QStringLiteral("longest turn of the event loop"), pulse.longestTurnMs(), "ms",
                "<= 20 ms");
    return task.successful() ? EXIT_SUCCESS : EXIT_FAILURE;
}
