#include "core/resources/ResObj.h"

#include "core/foundation/BinaryJson.h"
#include "core/resources/ResInfoJson.h"
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

bool ResObj::loadFromCache()
{
    const std::optional<QJsonObject> object = BinaryJson::readFile(resCachePathFile());
    if (!object || !parseResInfoFromJson(*object))
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
