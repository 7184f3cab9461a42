#include "core/deploy/DeployTaskWithUnzip.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>

#include "core/deploy/UnpackFolder.h"
#include "core/foundation/FSH.h"
#include "support/archivekit/FileInstance.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

DeployTaskWithUnzip::DeployTaskWithUnzip(const DTskContext &context, QObject *parent)
    : DeployTask(context, parent), m_tempFolder(UnpackFolder::newPath(context.deployDir))
{
}

DeployTaskWithUnzip::~DeployTaskWithUnzip() = default;

bool DeployTaskWithUnzip::abort()
{
    Q_EMIT quitTask();
    return true;
}

void DeployTaskWithUnzip::onTaskRun()
{
    // Before the work, which may need the room.
    UnpackFolder::sweep(context().deployDir);
    DeployTask::onTaskRun();
}

void DeployTaskWithUnzip::deploy()
{
    const QString folder = context().deployDir;
    if (folder.isEmpty() || !QFileInfo(context().srcFile).isFile())
        return fail(tr("unknown error"));
    if (!FS::makeFolder(folder))
        return fail(tr("can not create dir  %1.").arg(folder));
    m_lock = UnpackFolder::lock(m_tempFolder);
    if (!FS::makeFolder(m_tempFolder)) {
        m_lock.reset();
        return fail(tr("can not create dir %1.").arg(m_tempFolder));
    }
    unpack();
}

void DeployTaskWithUnzip::unpack()
{
    QEventLoop loop;
    FileInstance instance(nullptr); // no child of the task, which lives on another thread
    connect(&instance, &FileInstance::UnCpercentChanged, this, &DeployTaskWithUnzip::setCurProgress,
            Qt::DirectConnection);
    connect(&instance, &FileInstance::FileFinished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    instance.Start(context().srcFile, m_tempFolder);
    if (instance.state() == FileInstance::State::Running)
        loop.exec();
    onUnZipToTempFinished(instance.state() == FileInstance::State::Succeeded);
}

void DeployTaskWithUnzip::onUnZipToTempFinished(bool success)
{
    const QString folder = context().deployDir;
    if (!success) {
        Log::critical(QLatin1String("extract ") % context().srcFile % QLatin1String(" to ") %
                      folder % QLatin1String(" failed."));
        removeTempFolder();
        return fail(tr("unzip failed."));
    }
    QStringList files = FSH::getFileListFromDirRecursively(m_tempFolder);
    const QDir temp(m_tempFolder);
    for (QString &file : files)
        file = temp.relativeFilePath(file);
    // A failure does not end the task: the record then holds what has got into place.
    if (!FSH::moveFileRecursively(m_tempFolder, folder, false))
        Log::warning(QLatin1String("can not move all of ") % m_tempFolder %
                     QLatin1String(" into place."));
    removeTempFolder();
    if (!canUnZipFinished())
        return fail(tr("unzip file is not expected."));
    if (context().history)
        context().history->insertRecord(folder, context().deployResKey, files,
                                        QDateTime::currentDateTime(), true);
    emitSucceeded();
}

void DeployTaskWithUnzip::removeTempFolder()
{
    const bool isGone(FS::removeTree(m_tempFolder));
    if (!isGone)
        Log::critical(QLatin1String("remove ") % m_tempFolder % QLatin1String(" failed."));
    m_lock.reset();
    if (!isGone)
        UnpackFolder::sweepAgain(context().deployDir);
}

bool DeployTaskWithUnzip::canUnZipFinished()
{
    return true;
}
