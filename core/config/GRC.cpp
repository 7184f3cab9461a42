#include "core/config/GRC.h"

#include "core/config/GameResConfig.h"
#include "core/config/OwnedResources.h"

using OwnedResourceLists::idsOfType;
using OwnedResourceLists::without;

namespace GRC {

QList<unsigned int> GetCurCustomInstList(quint64 key)
{
    return GameResConfig::GetInstance()->getResourceConfigList(key).values();
}

QList<unsigned int> GetRemoteDefaultInstList(quint64 key)
{
    return GameResConfig::GetInstance()->getRemoteDefaultConfigList(key).values();
}

QList<unsigned int> GetCurDefaultInstList(quint64 key)
{
    return without(GetRemoteDefaultInstList(key),
                   GameResConfig::GetInstance()->getIgnoredRemoteDefaultCfgList(key));
}

QList<unsigned int> GetCurCustomResList(unsigned int instId, ResType type)
{
    return idsOfType(GameResConfig::GetInstance()->getCustomGameInstCfgList(instId), type);
}

QList<unsigned int> GetRemoteDefaultResList(unsigned int instId, ResType type)
{
    return idsOfType(GameResConfig::GetInstance()->getRemoteDefaultGameInstCfgList(instId), type);
}

QList<unsigned int> GetCurDefaultResList(unsigned int instId, ResType type)
{
    const auto *config = GameResConfig::GetInstance();
    return without(GetRemoteDefaultResList(instId, type),
                   idsOfType(config->getIgnoredRemoteDefaultGameInstCfgList(instId), type));
}

} // namespace GRC
