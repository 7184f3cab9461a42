#pragma once

#include "core/deploy/DeployTaskWithUnzip.h"

/// Deploys a Java runtime and stores the path of its javaw.exe as the setting "JavaPath". Counts as
/// deployed if the Java at that path runs, which is tried with the host's resource
/// ":/rivet/JavaCheck.jar".
class RIVETCORE_EXPORT DeployJavaResTask : public DeployTaskWithUnzip
{
    Q_OBJECT
public:
    using DeployTaskWithUnzip::DeployTaskWithUnzip;

protected:
    bool isDeployed() override;
    bool canUnZipFinished() override;
};
