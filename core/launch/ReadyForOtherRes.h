#pragma once

#include <QList>

#include "core/launch/MinecraftLaunchStep.h"

struct OrAuthServerInstanceInfo;

/// Makes the smaller resources of an instance ready, such as mods and resource packs: the defaults
/// and the user's own, as the resource configuration names them.
///
/// Main thread only. When all are deployed, and GlobalDebugOptions does not forbid it, it removes
/// from the instance what these resources no longer want there.
class RIVETCORE_EXPORT ReadyForOtherRes : public MinecraftLaunchStep
{
    Q_OBJECT
public:
    /// Without @p info the step has nothing to do.
    ReadyForOtherRes(std::shared_ptr<OrAuthServerInstanceInfo> info,
                     std::weak_ptr<MCInstanceObj> instance, IResManager *manager, QObject *parent);
    ~ReadyForOtherRes() override;

protected:
    void onTaskRun() override;

protected Q_SLOTS:
    void getReadyForTask() override;
    void emitSucceeded() override;

private:
    using IdsByType = QHash<quint32, QList<quint32>>;

    QList<quint32> wantedIds(quint32 type) const;
    void addAllDependsRes(IdsByType &out);
    void addDependsOf(quint32 id, quint32 type, IdsByType &out);
    bool checkAndRepaireDeployFloder(const IdsByType &list);

    const std::shared_ptr<OrAuthServerInstanceInfo> m_info;
};
