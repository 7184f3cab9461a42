#pragma once

#include <QList>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"

/// The lists that the rest of the system wants from GameResConfig. Any thread; in no particular
/// order.
namespace GRC {

/// Instances that have the resource as custom.
RIVETCORE_EXPORT QList<unsigned int> GetCurCustomInstList(quint64 key);
/// Instances that have it as remote default.
RIVETCORE_EXPORT QList<unsigned int> GetRemoteDefaultInstList(quint64 key);
/// The same without those that ignore it.
RIVETCORE_EXPORT QList<unsigned int> GetCurDefaultInstList(quint64 key);

/// Ids of the resources of @p type that the instance has as custom.
RIVETCORE_EXPORT QList<unsigned int> GetCurCustomResList(unsigned int instId, ResType type);
/// Ids of those that it has as remote default.
RIVETCORE_EXPORT QList<unsigned int> GetRemoteDefaultResList(unsigned int instId, ResType type);
/// The same without the ignored ones.
RIVETCORE_EXPORT QList<unsigned int> GetCurDefaultResList(unsigned int instId, ResType type);

} // namespace GRC
