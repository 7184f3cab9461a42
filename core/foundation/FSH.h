#pragma once

#include <QString>
#include <QStringList>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"

/// Where things lie on disk: the one owner of path rules.
///
/// Stateless; what asks for the game data directory is for the main thread, for it reads the
/// settings, all else for any thread. Paths come back with forward slashes and without a trailing
/// separator. A failure is an empty result, 0 or false, never an exception.
namespace FSH {

/// @p path made absolute, from the application directory if it is relative, and made a directory if
/// it is none yet. Empty, with a line on the log, if it can't be one.
RIVETCORE_EXPORT QString absolutePathWithAppDir(const QString &path);

/// The game data directory, which is made if it is missing. Empty, with a line on the log, if the
/// settings name none or it can't be made; the paths below then begin with the separator.
RIVETCORE_EXPORT QString gameDataAbsolutePath();

/// The directory of the game instance @p id, which is not made.
RIVETCORE_EXPORT QString instancePathDir(unsigned int id, QString name);

/// Name of the folder for @p type inside an instance's game directory; empty for a type without.
RIVETCORE_EXPORT QString dirNameInGame(ResType type);

/// The directory that holds all downloads, and the one below it for @p type; an unknown type has
/// the former. Neither is made.
RIVETCORE_EXPORT QString resourceDownloadBaseDir();
RIVETCORE_EXPORT QString resourceDownloadDir(ResType type);

/// The directory of the launcher's own records, one for each user of the machine; it is not made.
RIVETCORE_EXPORT QString localAppDataPath();

/// Absolute paths of everything below @p dir, hidden entries too, each directory before its
/// contents, otherwise unsorted; what is neither file nor directory is left out. Follows links, but
/// not in a circle. Empty if @p dir is no directory.
RIVETCORE_EXPORT QStringList getFileListFromDirRecursively(const QString &dir);

/// Moves the file @p from to @p to, or all files below the directory @p from into the directory
/// @p to, which is made. Links below it are moved as they are. With @p keepTarget an existing file
/// is a failure, else it is replaced. The first failure ends the move with false: what has been
/// moved stays moved, and each other file is whole where it was. Emptied directories stay behind.
/// Blocks: across file systems it copies, and it waits up to two seconds for a held target.
RIVETCORE_EXPORT bool moveFileRecursively(const QString &from, const QString &to, bool keepTarget);

/// The version of the host to show, from the file rivet.exe in the application directory.
RIVETCORE_EXPORT QString getRivetDisplayVer();

/// The build number of the host, behind "Build-" in its file version; 0 if there is none.
RIVETCORE_EXPORT unsigned int getRivetIntervalNumVer();

} // namespace FSH
