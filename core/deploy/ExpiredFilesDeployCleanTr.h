#pragma once

#include <QSet>

#include "core/deploy/DeployCleanTr.h"

/// Removes the recorded files of the resources that are no longer wanted, but for those that a
/// wanted one has recorded too, and the folders that this empties. Nothing else in the folder is
/// touched.
class RIVETCORE_EXPORT ExpiredFilesDeployCleanTr : public DeployCleanTr
{
public:
    bool Execute() override;
    /// The files of the resources that are no longer wanted.
    QStringList getExecuteResult() override;

private:
    bool removeFiles(const QStringList &names, const QSet<QString> &kept) const;
    void removeEmptyFoldersAbove(const QString &name) const;

    QStringList m_result;
};
