#pragma once

#include <memory>

#include <QFutureWatcher>

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// Wipes the game data directory but for the downloads, and forgets the user's choice of resources
/// and all records of what was deployed: the next launch deploys everything anew.
///
/// Main thread only, which never waits: the work is done on a thread of the global pool, and goes
/// on to its end there if the task is deleted meanwhile. The end of the core waits for it. No
/// launch may run beside it. Cannot be aborted.
///
/// Ends in a failure if something could not go; the rest goes all the same. Status lines tell what
/// it was, and so does the log. The downloads stay, also where they are reached by a link, and so
/// do the host's own folder and that of its records, should they lie in the game data directory; if
/// one of them is the game data directory, nothing there is touched, which is a failure.
class RIVETCORE_EXPORT RepairPowerfulTask : public TaskAbstract
{
    Q_OBJECT
public:
    explicit RepairPowerfulTask(QObject *parent = nullptr);
    ~RepairPowerfulTask() override;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void onPowerfulRepairFinished();

private:
    struct Places;
    struct Listener;

    /// Without the task, which may be deleted while this runs. Blocks; any thread.
    static bool repairPowerful(const Places &places, Listener &listener);

    const std::shared_ptr<Listener> m_listener;
    QFutureWatcher<bool> m_watcher;
};
