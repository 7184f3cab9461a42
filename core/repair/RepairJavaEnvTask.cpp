#include "core/repair/RepairJavaEnvTask.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QtConcurrent>

#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/RandomWait.h"
#include "platform/FileEntry.h"
#include "platform/FileUse.h"
#include "support/coresupport/CCommonFunction.h"
#include "support/coresupport/DirectoryNames.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace {

const QString javaPathKey = QStringLiteral("JavaPath");

// Each look at a setting is through a store of its own: one thread here is of the pool, and the
// core may have ended before the removal has. Qt keeps all stores of a process in step.
QFileInfo configuredJava()
{
    return QFileInfo(MCSettings().value(javaPathKey, {}).toString());
}

/// True if a process runs a Java below @p folder, whatever the settings name. A link or a junction
/// there leads to a Java of somebody else, which the removal does not touch.
bool isAnyJavaRunningFrom(const platform::NativePath &folder)
{
    static const QStringList programs{QStringLiteral("java"), QStringLiteral("java.exe"),
                                      QStringLiteral("javaw"), QStringLiteral("javaw.exe")};
    const auto entries = platform::listFolder(folder).entries;
    return std::any_of(entries.begin(), entries.end(), [](const platform::FolderEntry &entry) {
        if (entry.kind == platform::EntryKind::Directory)
            return isAnyJavaRunningFrom(entry.path);
        const QString path = platform::fromNative(entry.path);
        return entry.kind == platform::EntryKind::File &&
               programs.contains(QFileInfo(path).fileName(), Qt::CaseInsensitive) &&
               platform::fileUse(path) == platform::FileUse::Held;
    });
}

} // namespace

RepairJavaEnvTask::RepairJavaEnvTask(QObject *parent) : TaskAbstract(parent)
{
    connect(&m_repair, &QFutureWatcherBase::finished, this, [this] { endRun(m_repair.result()); });
}

RepairJavaEnvTask::~RepairJavaEnvTask() = default;

void RepairJavaEnvTask::onTaskRun()
{
    setTaskBrief(tr("Start repair java evn configured"));
    setStatus(tr("repair java evn configured..."));
    const QString folder = folderToRemove();
    // A runtime has hundreds of files, and one that is held is tried again for two seconds.
    if (!folder.isEmpty())
        m_repair.setFuture(QtConcurrent::run(&RepairJavaEnvTask::repairJavaEnv, folder));
    else
        endRun(repairJavaEnv(folder));
}

QString RepairJavaEnvTask::folderToRemove()
{
    const QFileInfo java = configuredJava();
    if (java.isFile() &&
        java.fileName().compare(QLatin1String("javaw.exe"), Qt::CaseInsensitive) == 0)
        return {};
    const QString gameData = FSH::gameDataAbsolutePath();
    const QString folder =
        QDir::cleanPath(gameData % QLatin1Char('/') % QLatin1String(g_deploypath_java_name));
    return !gameData.isEmpty() && QFileInfo(folder).isDir() ? folder : QString();
}

bool RepairJavaEnvTask::repairJavaEnv(const QString &folder)
{
    const bool isFree = folder.isEmpty() || removeDeployedJava(folder);
    MCSettings settings;
    settings.setValue(javaPathKey, QStringLiteral("default"));
    settings.setValue(QStringLiteral("JavaParam"), CCommonFunction::GetDefaultJVMParam(true));
    return isFree;
}

bool RepairJavaEnvTask::removeDeployedJava(const QString &folder)
{
    return !isJavaFileOccupied() && !isAnyJavaRunningFrom(platform::toNative(folder)) &&
           FS::removeTree(folder);
}

bool RepairJavaEnvTask::isJavaFileOccupied()
{
    const QFileInfo java = configuredJava();
    if (java.filePath().isEmpty()) {
        Log::warning(QStringLiteral("javaPath string is not allowed empty!"));
        return false;
    }
    if (!java.exists())
        return false;
    const platform::FileUse use = platform::fileUse(java.absoluteFilePath());
    if (use == platform::FileUse::Unknown)
        Log::warning(QStringLiteral("file of \"javaw.exe\" open failed, it maybe have problem."));
    return use == platform::FileUse::Held;
}

void RepairJavaEnvTask::endRun(bool isRepaired)
{
    if (isRepaired) {
        RandomWait::callAfter(this, [this] { emitSucceeded(); });
        return;
    }
    setStatus(tr("Java evn repair Failed, check is there some related process is running?"));
    const QString reason = tr("repair java env configured failed");
    Log::critical(reason);
    emitFailed(reason);
}
