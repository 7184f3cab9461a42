#pragma once

#include "core/deploy/DeployTask.h"

/// Deploys a resource that is a single file, such as a picture, by copying it.
class RIVETCORE_EXPORT DeployTaskWithCopyFile : public DeployTask
{
    Q_OBJECT
public:
    /// @p fileName is the name that the file gets in the directory.
    explicit DeployTaskWithCopyFile(const QString &fileName, const DTskContext &context,
                                    QObject *parent = nullptr);

protected:
    void deploy() override;

private:
    QString m_fileName;
};
