#include "core/resources/ResObj.h"

#include <QDir>

#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployJavaResTask.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/deploy/DeployTaskWithCopyFile.h"
#include "core/deploy/DeployTaskWithUnzipMd5.h"
#include "core/foundation/BinaryJson.h"
#include "core/foundation/Environment.h"
#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "core/resources/ResInfoJson.h"
#include "support/coresupport/DirectoryNames.h"
#include "support/jsonfskit/Log.h"

namespace {

/// @p ask of the task; without a task 0, and a line on the log.
template <typename Ask>
auto askTask(ResUpdateTask *task, const Ask &ask,
             const QString &complaint = QStringLiteral("update task object null pointer"))
    -> decltype(ask(*task))
{
    if (task)
        return ask(*task);
    Log::warning(complaint);
    return decltype(ask(*task))();
}

QString sharedDeployDir(const char *name)
{
    return FSH::gameDataAbsolutePath() % QDir::separator() % QString::fromUtf8(name);
}

QString deployDirIn(const QString &folder, ResType type)
{
    switch (type) {
    case ResTypeJava:
        return sharedDeployDir(g_deploypath_java_name);
    case ResTypeSkins:
    case ResTypeCloaks:
        return sharedDeployDir(g_deploypath_skin_name);
    case ResTypeGame:
        return sharedDeployDir(g_deploypath_game_name);
    default:
        return QDir::cleanPath(folder % QDir::separator() % FSH::dirNameInGame(type));
    }
}

/// Once in the lifetime of the settings: records of game clients from before then are of no use.
void clearGameHistoryOnce()
{
    const auto settings = Environment::GetInstance()->settings();
    const QString key = QStringLiteral("cgr");
    if (!settings || !settings->value(key, QVariant()).isNull())
        return;
    DeployGameResRecorder::GetInstance()->clearAllRecord();
    settings->setValue(key, 1);
}

} // namespace

ResObj::ResObj(uint id, ResType type, QObject *parent) : QObject(parent)
{
    setResId(id);
    setResType(type);
    setObjectName(QStringLiteral("resObj,id:%1,type:%2").arg(id).arg(type));
    m_pUpdateTask = new ResUpdateTask(id, type, this, nullptr);
    connect(m_pUpdateTask, &ResUpdateTask::resInfoUpdated, this, &ResObj::resInfoUpdated);
    connect(m_pUpdateTask, &ResUpdateTask::installStatusChanged, this,
            &ResObj::installStatusChanged);
    connect(m_pUpdateTask, &ResUpdateTask::installProgressChanged, this,
            &ResObj::installProgressChanged);
    connect(m_pUpdateTask, &ResUpdateTask::dlSpeedUpdated, this, &ResObj::dlSpeedUpdated);
}

ResObj::~ResObj()
{
    delete m_pUpdateTask;
}

void ResObj::install()
{
    if (m_pUpdateTask)
        m_pUpdateTask->start();
    else
        Log::critical(QStringLiteral("update task object not defined."));
}

void ResObj::stop()
{
    askTask(m_pUpdateTask, [](ResUpdateTask &task) { task.stop(); });
}

void ResObj::deleteRes()
{
    askTask(m_pUpdateTask, [](ResUpdateTask &task) { task.deleteRes(); });
}

uint ResObj::installStatus() const
{
    return askTask(m_pUpdateTask, [](ResUpdateTask &task) { return task.installStatus(); });
}

uint ResObj::installProgress() const
{
    return askTask(m_pUpdateTask, [](ResUpdateTask &task) { return task.installProgress(); });
}

uint ResObj::dlSpeed() const
{
    return askTask(m_pUpdateTask, [](ResUpdateTask &task) { return task.dlSpeed(); });
}

quint64 ResObj::dlTotalSize() const
{
    return askTask(m_pUpdateTask, [](ResUpdateTask &task) { return task.dlTotalSize(); });
}

quint64 ResObj::dlDownloadSize() const
{
    return askTask(
        m_pUpdateTask, [](ResUpdateTask &task) { return task.dlDownloadSize(); },
        QStringLiteral("m_pUpdateTask null pointer"));
}

DeployTask *ResObj::createDeployResTask(const QString &folder, uint id)
{
    if (folder.isEmpty()) {
        Log::critical(tr("deploy out folder prefix is empty."));
        return nullptr;
    }
    DTskContext context;
    context.srcFile =
        FSH::resourceDownloadDir(resType()) % QDir::separator() % QString::number(resId());
    context.deployDir = deployDirIn(folder, resType());
    context.deployResKey = ResourceKey::pack(resId(), resType());
    context.deployTaskId = id;
    context.history = DeployResRecorder::GetInstance();
    switch (resType()) {
    case ResTypeMods:
        return new DeployTaskWithUnzipMd5(context);
    case ResTypeJava:
        return new DeployJavaResTask(context);
    case ResTypeSkins:
    case ResTypeCloaks:
        return new DeployTaskWithCopyFile(QStringLiteral("%1.png").arg(resId()), context);
    case ResTypeGame:
        clearGameHistoryOnce();
        context.history = DeployGameResRecorder::GetInstance();
        return new DeployTaskWithUnzipMd5(context);
    default:
        return new DeployTaskWithUnzip(context);
    }
}

bool ResObj::loadFromCache()
{
    const std::optional<QJsonObject> object = BinaryJson::readFile(resCachePathFile());
    // A file under a wrong name would make this resource pass for another.
    if (!object || ResInfoJson::keyIn(*object) != ResourceKey::pack(resId(), resType()) ||
        !parseResInfoFromJson(*object))
        return false;
    if (m_pUpdateTask)
        m_pUpdateTask->setUpdateStatus(ResUpdateTask::UpdatedFromCache);
    return true;
}

bool ResObj::loadFromRemote(const QJsonObject &object)
{
    if (!parseResInfoFromJson(object))
        return false;
    if (m_pUpdateTask)
        m_pUpdateTask->setUpdateStatus(ResUpdateTask::UpdatedFromRemote);
    saveToCache();
    return true;
}

bool ResObj::parseResInfoFromJson(const QJsonObject &object)
{
    return ResInfoJson::read(object, *this);
}

bool ResObj::parseDependList(ResType type, const QString &text, QList<quint64> &out)
{
    ResInfoJson::readDepends(type, text, out);
    return true;
}
