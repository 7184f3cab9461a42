#include "core/deploy/DeployTaskWithCopyFile.h"

#include <QFile>
#include <QFileInfo>

#include "support/coresupport/CCommonFunction.h"
#include "support/jsonfskit/FS.h"

DeployTaskWithCopyFile::DeployTaskWithCopyFile(const QString &fileName, const DTskContext &context,
                                               QObject *parent)
    : DeployTask(context, parent), m_fileName(fileName)
{
}

void DeployTaskWithCopyFile::deploy()
{
    const QString source = context().srcFile, folder = context().deployDir;
    if (folder.isEmpty())
        return fail(tr("failed, skin deploy dir is empty. "));
    if (!QFileInfo(source).isFile())
        return fail(tr("src file is not exists. "));
    if (!FS::makeFolder(folder))
        return fail(tr("can not create dir %1.").arg(folder));
    const QString target = folder % QLatin1Char('/') % m_fileName;
    CCommonFunction::DeleteSingleFile(target);
    if (!QFile::copy(source, target))
        return fail(tr("copy %1 to %2 failed.").arg(source, target));
    if (context().history)
        context().history->insertRecord(folder, context().deployResKey, {m_fileName},
                                        QDateTime::currentDateTime(), true);
    emitSucceeded();
}
