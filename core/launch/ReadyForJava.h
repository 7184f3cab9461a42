#pragma once

#include "core/launch/MinecraftLaunchStep.h"

/// Makes the Java runtime ready that suits the word size of this machine.
///
/// Main thread only. Every failure but those of download and deployment is ErrResourceList.
class RIVETCORE_EXPORT ReadyForJava : public MinecraftLaunchStep
{
    Q_OBJECT
public:
    using MinecraftLaunchStep::MinecraftLaunchStep;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void getReadyForTask() override;

private:
    void failWithoutList(const QString &line = {});
};
