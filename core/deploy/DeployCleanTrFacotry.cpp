#include "core/deploy/DeployCleanTrFacotry.h"

#include "base/LazySingleton.h"
#include "core/deploy/ExcludeFilesDeployCleanTr.h"
#include "core/deploy/ExpiredFilesDeployCleanTr.h"
#include "core/deploy/NullDeployCleanTr.h"
#include "core/foundation/ResourceKey.h"

DeployCleanTrFacotry::DeployCleanTrFacotry() = default;

DeployCleanTrFacotry::~DeployCleanTrFacotry() = default;

DeployCleanTrFacotry *DeployCleanTrFacotry::GetInstance()
{
    return LazySingleton<DeployCleanTrFacotry>::get();
}

DeployCleanTr *DeployCleanTrFacotry::createDeployCleanTr(uint kind)
{
    switch (kind) {
    case ResTypeMods:
    case ResTypeResourcePacks:
    case ResTypeShaders:
        return new ExcludeFilesDeployCleanTr;
    case ResTypeOther:
        return new ExpiredFilesDeployCleanTr;
    default:
        return new NullDeployCleanTr;
    }
}
