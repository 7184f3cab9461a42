#include "core/deploy/DeployResRecorder.h"

#include "base/LazySingleton.h"

DeployResRecorder *DeployResRecorder::GetInstance()
{
    return LazySingleton<DeployResRecorder>::get();
}
