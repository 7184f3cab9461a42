#include "core/repair/RepairJavaEnvTask.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QtConcurrent>

#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/RandomWait.h"
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

/// True if a process runs a Java below @p folder, whatever the settings name.
bool isAnyJavaRunningFrom(const QString &folder)
{
    static const QStringList programs{QStringLiteral("java"), QStringLiteral("java.exe"),
                                      QStringLiteral("javaw"), QStringLiteral("javaw.exe")};
    // A link there leads to a Java of somebody else, which the removal does not touch.
    QDirIterator it(folder, programs, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        if (platform::fileUse(it.next()) == platform::FileUse::Held)
            return true;
    }
    return false;
}

} // namespace

RepairJavaEnvTask::RepairJavaEnvTask(QObject *parent) : TaskAbstract(parent)
{
    connect(&m_removal, &QFutureWatcherBase::finished, this, [this] {
        m_isHeld = !m_removal.result();
        endRun();
    });
}

RepairJavaEnvTask::~RepairJavaEnvTask() = default;

void RepairJavaEnvTask::onTaskRun()
{
    setTaskBrief(tr("Start repair java evn configured"));
    setStatus(tr("repair java evn configured..."));
    m_isHeld = false;
    const QString folder = folderToRemove();
    // A runtime has hundreds of files, and one that is held is tried again for two seconds.
    if (!folder.isEmpty())
        m_removal.setFuture(QtConcurrent::run(&RepairJavaEnvTask::removeDeployedJava, folder));
    else
        endRun();
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

bool RepairJavaEnvTask::removeDeployedJava(const QString &folder)
{
    return !isJavaFileOccupied() && !isAnyJavaRunningFrom(folder) && FS::removeTree(folder);
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

void RepairJavaEnvTask::endRun()
{
    if (repairJavaEnv()) {
        RandomWait::callAfter(this, [this] { emitSucceeded(); });
        return;
    }
    const QString reason = tr("repair java env configured failed");
    Log::critical(reason);
    emitFailed(reason);
}

bool RepairJavaEnvTask::repairJavaEnv()
{
    if (m_isHeld)
        setStatus(tr("Java evn repair Failed, check is there some related process is running?"));
    MCSettings settings;
    settings.setValue(javaPathKey, QStringLiteral("default"));
    settings.setValue(QStringLiteral("JavaParam"), CCommonFunction::GetDefaultJVMParam(true));
    return !m_isHeld;
}
