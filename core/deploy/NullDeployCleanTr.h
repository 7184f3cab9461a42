#pragma once

#include "core/deploy/DeployCleanTr.h"

/// Leaves the folder as it is.
class RIVETCORE_EXPORT NullDeployCleanTr : public DeployCleanTr
{
public:
    bool Execute() override;
    QStringList getExecuteResult() override;
};
