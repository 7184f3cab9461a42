#pragma once

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// A repair step that asks the system to give memory back.
///
/// Main thread only. Succeeds after a short wait; it cannot fail.
class RIVETCORE_EXPORT RepairOptimizeSysMemoryTask : public TaskAbstract
{
    Q_OBJECT
public:
    explicit RepairOptimizeSysMemoryTask(QObject *parent = nullptr);

protected:
    void onTaskRun() override;
};
