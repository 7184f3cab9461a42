#include "core/repair/RepairFileDeployTask.h"

#include "core/config/GameResConfig.h"
#include "core/repair/RandomWait.h"
#include "support/jsonfskit/Log.h"

RepairFileDeployTask::RepairFileDeployTask(QObject *parent) : TaskAbstract(parent) {}

void RepairFileDeployTask::onTaskRun()
{
    setTaskBrief(tr("repair game files configured"));
    setStatus(tr("repair game files configured..."));
    if (!repairResConfigFile()) {
        const QString reason = tr("To repair the game files configured failure");
        Log::critical(reason);
        emitFailed(reason);
        return;
    }
    RandomWait::callAfter(this, [this] { emitSucceeded(); });
}

bool RepairFileDeployTask::repairResConfigFile()
{
    GameResConfig *const config = GameResConfig::GetInstance();
    if (!config)
        return false;
    config->clearCustomConfig(GameResConfig::allInstances);
    config->clearUnSetDefaultConfig(GameResConfig::allInstances);
    return true;
}
