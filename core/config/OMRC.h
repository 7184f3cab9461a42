#pragma once

#include <QList>
#include <QString>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"

/// The lists that the rest of the system wants from OnlineMapResConfig. Any thread; in no
/// particular order.
namespace OMRC {

/// Ids of the resources of @p type that the user chose for the map.
RIVETCORE_EXPORT QList<unsigned int> GetCurCustomResList(const QString &mapName, ResType type);
/// Ids of those that the service gives as default.
RIVETCORE_EXPORT QList<unsigned int> GetRemoteDefaultResList(const QString &mapName, ResType type);
/// The same without the ignored ones.
RIVETCORE_EXPORT QList<unsigned int> GetCurDefaultResList(const QString &mapName, ResType type);

/// The keys of custom and default resources of all types: one that is both stands twice, and being
/// ignored takes one occurrence.
RIVETCORE_EXPORT QList<quint64> GetMapResCfgList(const QString &mapName);

} // namespace OMRC
