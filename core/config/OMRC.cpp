#include "core/config/OMRC.h"

#include "core/config/OnlineMapResConfig.h"
#include "core/config/OwnedResources.h"

using OwnedResourceLists::idsOfType;
using OwnedResourceLists::without;

namespace OMRC {

QList<unsigned int> GetCurCustomResList(const QString &mapName, ResType type)
{
    return idsOfType(OnlineMapResConfig::GetInstance()->getCustomMapCfgList(mapName), type);
}

QList<unsigned int> GetRemoteDefaultResList(const QString &mapName, ResType type)
{
    return idsOfType(OnlineMapResConfig::GetInstance()->getRemoteDefaultMapCfgList(mapName), type);
}

QList<unsigned int> GetCurDefaultResList(const QString &mapName, ResType type)
{
    const auto *config = OnlineMapResConfig::GetInstance();
    return without(GetRemoteDefaultResList(mapName, type),
                   idsOfType(config->getIgnoredRemoteDefaultMapCfgList(mapName), type));
}

QList<quint64> GetMapResCfgList(const QString &mapName)
{
    const auto *config = OnlineMapResConfig::GetInstance();
    const QList<quint64> all = config->getCustomMapCfgList(mapName).values() +
                               config->getRemoteDefaultMapCfgList(mapName).values();
    return without(all, config->getIgnoredRemoteDefaultMapCfgList(mapName));
}

} // namespace OMRC
