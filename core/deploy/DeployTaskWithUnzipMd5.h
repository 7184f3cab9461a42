#pragma once

#include "core/deploy/DeployTaskWithUnzip.h"

/// Deploys an archive whose files are compared with their recorded sums, and removes the files of
/// the earlier deployment first. For mods and game clients. Needs a history to deploy.
class RIVETCORE_EXPORT DeployTaskWithUnzipMd5 : public DeployTaskWithUnzip
{
    Q_OBJECT
public:
    using DeployTaskWithUnzip::DeployTaskWithUnzip;

protected:
    bool isDeployed() override;
    void deploy() override;

private:
    bool isDeployFilesAccessDenied();
    bool isIntact(const DeployRecordItem &record) const;
};
