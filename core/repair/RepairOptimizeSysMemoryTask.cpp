#include "core/repair/RepairOptimizeSysMemoryTask.h"

#include "core/repair/RandomWait.h"
#include "support/coresupport/CCommonFunction.h"

RepairOptimizeSysMemoryTask::RepairOptimizeSysMemoryTask(QObject *parent) : TaskAbstract(parent) {}

void RepairOptimizeSysMemoryTask::onTaskRun()
{
    setTaskBrief(tr("Start optimize system memory"));
    setStatus(tr("optimize system memory..."));
    CCommonFunction::OptimizeSystemMemory();
    RandomWait::callAfter(this, [this] { emitSucceeded(); });
}
