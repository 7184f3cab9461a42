#pragma once

#include <QFutureWatcher>
#include <QString>

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// A repair step that puts the settings "JavaPath" and "JavaParam" back, so that Java is deployed
/// anew, and removes the deployed Java unless "JavaPath" names a javaw.exe that is there.
///
/// Main thread only. With something to remove, the work runs on the global thread pool and goes on
/// to its end, the settings included, if the task is deleted before. Fails if a running process
/// holds the deployed Java, of which nothing is removed then, or if it can't be removed as a whole;
/// the settings are put back all the same. Otherwise succeeds after a short wait.
class RIVETCORE_EXPORT RepairJavaEnvTask : public TaskAbstract
{
    Q_OBJECT
public:
    explicit RepairJavaEnvTask(QObject *parent = nullptr);
    ~RepairJavaEnvTask() override;

    /// The directory of the deployed Java, which a run would remove; empty if there is none or it
    /// has to stay.
    static QString folderToRemove();

protected:
    void onTaskRun() override;

private:
    /// Removes @p folder, if any, and puts the settings back. False if somebody holds what is in
    /// the folder. Blocks; any thread.
    static bool repairJavaEnv(const QString &folder);
    static bool removeDeployedJava(const QString &folder);
    static bool isJavaFileOccupied();

    void endRun(bool isRepaired);

    QFutureWatcher<bool> m_repair; ///< of repairJavaEnv()
};
