#include "core/deploy/DeployResRecorder.h"

#include "base/LazySingleton.h"
#include "core/deploy/DeployTask.h"

DeployResRecorder::~DeployResRecorder()
{
    DeployTask::waitForRunning();
}

DeployResRecorder *DeployResRecorder::GetInstance()
{
    return LazySingleton<DeployResRecorder>::get();
}
