#include "core/deploy/DeployJavaResTask.h"

#include <chrono>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryFile>

#include "core/deploy/UnpackFolder.h"
#include "core/foundation/MCSettings.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr std::chrono::milliseconds longestCheck = std::chrono::seconds(10);

const QString javaPathKey = QStringLiteral("JavaPath");
const QString javaName = QStringLiteral("javaw.exe");

/// The path of a copy of the host's check program, which Java can't read out of the resource;
/// empty on a failure.
QString writeCheckProgram()
{
    QFile resource(QStringLiteral(":/rivet/JavaCheck.jar"));
    QTemporaryFile file;
    file.setAutoRemove(false);
    if (!resource.open(QIODevice::ReadOnly) || !file.open())
        return {};
    const QByteArray data = resource.readAll();
    if (file.write(data) == data.size() && file.flush())
        return file.fileName();
    file.remove();
    return {};
}

bool printsItsProperties(const QString &java, const QString &program)
{
    QProcess process;
    process.start(java, {QStringLiteral("-jar"), program}, QIODevice::ReadWrite);
    if (!process.waitForFinished(static_cast<int>(longestCheck.count()))) {
        process.kill();
        process.waitForFinished();
        return false;
    }
    const QByteArray output = process.readAllStandardOutput();
    return output.contains("os.arch") && output.contains("java.version");
}

} // namespace

bool DeployJavaResTask::isDeployed()
{
    if (!DeployTaskWithUnzip::isDeployed())
        return false;
    // A store of our own, for the one of Environment belongs to the main thread. Qt keeps all
    // stores of a process in step.
    const QString java = MCSettings().value(javaPathKey, QVariant()).toString();
    const QFileInfo file(java);
    if (java.isEmpty() || !file.isFile() ||
        file.fileName().compare(javaName, Qt::CaseInsensitive) != 0)
        return false;
    const QString program = writeCheckProgram();
    if (program.isEmpty())
        return false;
    const bool isRunning = printsItsProperties(java, program);
    FS::removeFile(program);
    return isRunning;
}

bool DeployJavaResTask::canUnZipFinished()
{
    const QDir folder(context().deployDir);
    QDirIterator it(folder.path(), {javaName}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString java = it.next();
        // Another task may be unpacking there just now.
        if (UnpackFolder::isName(folder.relativeFilePath(java).section(QLatin1Char('/'), 0, 0)))
            continue;
        MCSettings settings;
        settings.setValue(javaPathKey, QDir::cleanPath(java));
        settings.save();
        return true;
    }
    Log::critical(QStringLiteral("can not find java... sth is wrong."));
    return false;
}
