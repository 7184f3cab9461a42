#pragma once

#include "core/launch/MinecraftLaunchStep.h"

/// Makes the game client ready that the instance runs.
///
/// Main thread only. Every failure but those of download and deployment is ErrResourceList.
class RIVETCORE_EXPORT ReadyForMinecraftFiles : public MinecraftLaunchStep
{
    Q_OBJECT
public:
    using MinecraftLaunchStep::MinecraftLaunchStep;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void getReadyForTask() override;

private:
    void failInList(const char *text);
};
