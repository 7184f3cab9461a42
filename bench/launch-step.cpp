#include <cstdlib>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "bench/LoopPulse.h"
#include "bench/Result.h"
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
    QElapsedTimer total;
    QObject::connect(&step, &TaskAbstract::finished, &app, &QCoreApplication::quit);
    LoopPulse pulse;
    pulse.start();
    total.start();
    QMetaObject::invokeMethod(
        &step, [&] { step.start(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
    const double ms = double(total.nsecsElapsed()) / 1e6;
    printResult(QStringLiteral("%1 resources, each").arg(mods), ms / mods, "ms");
    printResult(QStringLiteral("%1 resources, longest turn of the event loop").arg(mods),
                pulse.longestTurnMs(), "ms", "<= 100 ms");
    return step.successful() ? EXIT_SUCCESS : EXIT_FAILURE;
}
