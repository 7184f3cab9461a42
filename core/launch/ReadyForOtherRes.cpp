#include "core/launch/ReadyForOtherRes.h"

#include "core/config/GRC.h"
#include "core/deploy/DeployCleanTr.h"
#include "core/deploy/DeployCleanTrFacotry.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/foundation/FSH.h"
#include "core/launch/IResManager.h"
#include "core/launch/MCInstanceObj.h"
#include "core/launch/OrAuthServerInstanceInfo.h"
#include "core/resources/ResObj.h"
#include "support/coresupport/GlobalDebugOptions.h"
#include "support/jsonfskit/Log.h"

ReadyForOtherRes::ReadyForOtherRes(std::shared_ptr<OrAuthServerInstanceInfo> info,
                                   std::weak_ptr<MCInstanceObj> instance, IResManager *manager,
                                   QObject *parent)
    : MinecraftLaunchStep(std::move(instance), manager, parent), m_info(std::move(info))
{
}

ReadyForOtherRes::~ReadyForOtherRes() = default;

void ReadyForOtherRes::onTaskRun()
{
    MinecraftLaunchStep::onTaskRun();
    if (announce(tr("check other resource"),
                 tr("checking the other resource, please wait for a moment...")))
        getReadyForTask();
}

/// Defaults first.
QList<quint32> ReadyForOtherRes::wantedIds(quint32 type) const
{
    return GRC::GetCurDefaultResList(m_info->id, ResType(type)) +
           GRC::GetCurCustomResList(m_info->id, ResType(type));
}

void ReadyForOtherRes::getReadyForTask()
{
    std::set<ResKey> wanted;
    if (m_info) {
        for (auto entry = m_info->resTypes.keyBegin(); entry != m_info->resTypes.keyEnd();
             ++entry) {
            for (const quint32 id : wantedIds(*entry))
                wanted.insert(ResourceKey::pack(id, ResType(*entry)));
        }
    } else {
        Log::critical(QStringLiteral("info_ pointer emtpy."));
    }
    for (const ResKey key : wanted)
        followMade(key);
    MinecraftLaunchStep::getReadyForTask();
}

void ReadyForOtherRes::emitSucceeded()
{
    if (m_info && g_GlobalDebugOptions.deployFolderCheck) {
        IdsByType wanted;
        addAllDependsRes(wanted);
        if (!checkAndRepaireDeployFloder(wanted)) {
            Log::critical(QStringLiteral("repair deploy folder failed"));
            failWith(ErrDeployFailed, tr("repair deploy folder failed"));
            return;
        }
    }
    MinecraftLaunchStep::emitSucceeded();
}

void ReadyForOtherRes::addAllDependsRes(IdsByType &out)
{
    if (!m_info)
        return;
    for (auto entry = m_info->resTypes.keyBegin(); entry != m_info->resTypes.keyEnd(); ++entry) {
        const QList<quint32> ids = wantedIds(*entry);
        out[*entry] += ids;
        for (const quint32 id : ids)
            addDependsOf(id, *entry, out);
    }
}

/// One level only.
void ReadyForOtherRes::addDependsOf(quint32 id, quint32 type, IdsByType &out)
{
    const auto object = resManager() ? resManager()->knownRes(id, type) : nullptr;
    if (!object)
        return;
    const QList<quint64> keys = object->dependsOnList();
    for (const quint64 key : keys)
        out[ResourceKey::typeOf(key)] += ResourceKey::idOf(key);
}

bool ReadyForOtherRes::checkAndRepaireDeployFloder(const IdsByType &list)
{
    const auto target = instance();
    if (!target)
        return false;
    for (auto entry = list.begin(); entry != list.end(); ++entry) {
        const auto type = static_cast<ResType>(entry.key());
        QList<quint64> keys;
        for (const quint32 id : *entry)
            keys += ResourceKey::pack(id, type);
        const std::unique_ptr<DeployCleanTr> cleaning(
            DeployCleanTrFacotry::GetInstance()->createDeployCleanTr(type));
        if (!cleaning)
            continue;
        cleaning->Init(target->instanceDir() % QLatin1Char('/') % FSH::dirNameInGame(type), keys,
                       DeployResRecorder::GetInstance());
        if (!cleaning->Execute())
            return false;
    }
    return true;
}
