#include "core/deploy/DeployTaskWithUnzipMd5.h"

#include <algorithm>

#include "core/deploy/DeployedFile.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/coresupport/GlobalDebugOptions.h"

bool DeployTaskWithUnzipMd5::isDeployed()
{
    if (!DeployTaskWithUnzip::isDeployed())
        return false;
    IDeploymentHistory *const history = context().history;
    if (!g_GlobalDebugOptions.deployChecksumCheck || !history)
        return true;
    DeployRecordItem record;
    return history->queryRecord(context().deployDir, context().deployResKey, record) &&
           isIntact(record);
}

bool DeployTaskWithUnzipMd5::isIntact(const DeployRecordItem &record) const
{
    int checked = 0;
    for (auto it = record.deployFiles.cbegin();
         it != record.deployFiles.cend() && checked < mostCheckedFiles; ++it, ++checked) {
        const std::optional<QString> sum = DeployedFile::md5(deployedPath(it.key()));
        // An empty file counts as damaged, whatever the record says.
        if (!sum || *sum == QLatin1String(DeployedFile::md5OfNothing) || *sum != it.value())
            return false;
    }
    return true;
}

void DeployTaskWithUnzipMd5::deploy()
{
    if (isDeployFilesAccessDenied())
        fail(QStringLiteral("access denied when deploy files!"));
    else
        DeployTaskWithUnzip::deploy();
}

/// Removes the files of the earlier deployment.
bool DeployTaskWithUnzipMd5::isDeployFilesAccessDenied()
{
    DeployRecordItem record;
    const QString folder = context().deployDir;
    if (!context().history ||
        !context().history->queryRecord(folder, context().deployResKey, record))
        return false;
    const auto &files = record.deployFiles;
    return std::any_of(files.keyBegin(), files.keyEnd(), [&](const QString &name) {
        // What leads out of the folder is not ours, so it is not in our way either.
        return DeployedFile::isRemovable(folder, name) &&
               !CCommonFunction::DeleteSingleFile(deployedPath(name));
    });
}
