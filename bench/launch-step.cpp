#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "bench/LoopPulse.h"
#include "core/config/GameResConfig.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "core/launch/OrAuthServerInstanceInfo.h"
#include "core/launch/ReadyForOtherRes.h"
#include "tests/support/ResManager.h"
#include "tests/support/TestInstance.h"

// One step that downloads and deploys the mods 1 to N of the service at RIVET_SERVICE_URL into a
// fresh folder: rivet-bench-launch-step N
int main(int argc, char **argv)
{
    const QTemporaryDir dir;
    qputenv("XDG_CONFIG_HOME", dir.path().toUtf8());
    const QCoreApplication app(argc, argv);
    const RivetCoreAtExitManagerUtil core;
    Environment::GetInstance()->settings()->setValue(QStringLiteral("DataPath"), dir.path());
    DeployResRecorder::GetInstance()->init(dir.filePath(QStringLiteral("deploy.cache")));
    auto *config = GameResConfig::GetInstance();
    config->initialize(dir.filePath(QStringLiteral("game.config")));
    const int mods = argc > 1 ? std::atoi(argv[1]) : 100;
    for (int id = 1; id <= mods; ++id)
        config->setGameInstanceConfig(9, {ResourceKey::pack(quint32(id), ResTypeMods)}, false);
    const auto info = std::make_shared<OrAuthServerInstanceInfo>();
    info->id = 9;
    info->resTypes = {{ResTypeMods, {}}};
    const auto instance = std::make_shared<TestInstance>(dir.filePath(QStringLiteral("instance")));

    ResManager resources;
    ReadyForOtherRes step(info, instance, &resources, nullptr);
    int signalCount = 0;
    QElapsedTimer total;
    qint64 downloadedMs = 0;
    QObject::connect(&step, &TaskAbstract::finished, &app, &QCoreApplication::quit);
    QObject::connect(&step, &TaskAbstract::status, [&] { ++signalCount; });
    QObject::connect(&step, &TaskAbstract::progress, [&](quint64 percent) {
        if (percent >= 85 && downloadedMs == 0)
            downloadedMs = total.elapsed();
    });
    LoopPulse pulse;
    pulse.start();
    total.start();
    QMetaObject::invokeMethod(
        &step, [&] { step.start(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
    const double ms = double(total.elapsed());
    std::printf("%5d mods: %6.0f ms, %.2f ms each (%.2f to download); longest turn %.0f ms; "
                "%d status texts\n",
                mods, ms, ms / mods, double(downloadedMs) / mods, pulse.longestTurnMs(),
                signalCount);
    return step.successful() ? EXIT_SUCCESS : EXIT_FAILURE;
}
