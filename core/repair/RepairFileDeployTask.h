#pragma once

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// A repair step that forgets the user's resource choices for all game instances: what was chosen
/// and which defaults were switched off. The service's defaults stay.
///
/// Main thread only. Succeeds after a short wait. The file of GameResConfig changes with its next
/// save.
class RIVETCORE_EXPORT RepairFileDeployTask : public TaskAbstract
{
    Q_OBJECT
public:
    explicit RepairFileDeployTask(QObject *parent = nullptr);

protected:
    void onTaskRun() override;

private:
    /// False if there is no GameResConfig.
    bool repairResConfigFile();
};
