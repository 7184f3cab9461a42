#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "base/RivetCoreExport.h"
#include "core/deploy/IDeploymentHistory.h"

/// A way to rid a resource folder of what the game no longer wants.
///
/// Made by DeployCleanTrFacotry, initialised, run once, deleted by its caller. Not beside
/// deployments of the same history.
///
/// Each unwanted record leaves the disk by a save of its own, before its files go: whatever ends
/// the process meanwhile may leave files that no record claims, but no record without its files.
class RIVETCORE_EXPORT DeployCleanTr
{
public:
    virtual ~DeployCleanTr() = default;

    /// @p history is not owned and must live until Execute() has returned.
    void Init(const QString &folder, QList<quint64> &wanted, IDeploymentHistory *history);

    /// Does the work; blocks. False if something could not be removed.
    virtual bool Execute() = 0;
    /// Names of files relative to the folder; each strategy tells which.
    virtual QStringList getExecuteResult() = 0;

protected:
    DeployCleanTr() = default;
    DeployCleanTr(const DeployCleanTr &) = default;
    DeployCleanTr &operator=(const DeployCleanTr &) = default;

    /// Notes the run; false if there is no history or no folder to work on.
    bool begin();
    /// The names of the files recorded for @p key.
    QStringList recordedFiles(quint64 key) const;

    IDeploymentHistory *m_history = nullptr;
    QString m_folder;
    QList<quint64> m_wanted;
    bool m_hasRun = false;
};
