#pragma once

#include <memory>

#include "core/deploy/DeployTask.h"

namespace platform {
class FileLock;
}

/// Deploys an archive: unpacks it into a folder of its own inside the target directory, moves the
/// files into place and records them. progress() counts unpacked bytes.
///
/// The folder is named by a UUID in braces, and a lock file of that name beside it tells that a
/// running task owns it. What tasks of ended processes left there goes when the first task of this
/// process for the directory starts.
class RIVETCORE_EXPORT DeployTaskWithUnzip : public DeployTask
{
    Q_OBJECT
public:
    explicit DeployTaskWithUnzip(const DTskContext &context, QObject *parent = nullptr);
    ~DeployTaskWithUnzip() override;

public Q_SLOTS:
    /// Emits quitTask() and returns true; the unpacking runs on to its end.
    bool abort() override;

Q_SIGNALS:
    void quitTask();

protected:
    void onTaskRun() override;
    void deploy() override;

    /// The last word on files that have been moved into place; false fails the task.
    virtual bool canUnZipFinished();

private:
    void unpack();
    void onUnZipToTempFinished(bool success);
    void removeTempFolder();

    QString m_tempFolder;
    /// Held from before the folder is made until it is gone.
    std::unique_ptr<platform::FileLock> m_lock;
};
