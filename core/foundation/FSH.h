#pragma once

#include <QString>
#include <QStringList>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"

/// Where things lie on disk: the one owner of path rules.
///
/// Stateless and usable on any thread. Paths come back with forward slashes and without a trailing
/// separator; a failure is an empty result or false, never an exception.
namespace FSH {

/// Name of the folder for @p type inside an instance's game directory; empty for a type without.
RIVETCORE_EXPORT QString dirNameInGame(ResType type);

/// Absolute paths of everything below @p dir, hidden entries too, each directory before its
/// contents, otherwise unsorted; what is neither file nor directory is left out. Follows links, but
/// not in a circle. Empty if @p dir is no directory.
RIVETCORE_EXPORT QStringList getFileListFromDirRecursively(const QString &dir);

} // namespace FSH
