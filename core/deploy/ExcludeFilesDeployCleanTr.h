#pragma once

#include "core/deploy/DeployCleanTr.h"

/// Clears the folder of everything but the recorded files of the wanted resources; what the player
/// put there goes too.
class RIVETCORE_EXPORT ExcludeFilesDeployCleanTr : public DeployCleanTr
{
public:
    bool Execute() override;
    /// The files that stay.
    QStringList getExecuteResult() override;

private:
    QStringList m_result;
};
