#pragma once

#include <QString>

#include "platform/RivetPlatformExport.h"

/// One name in a folder, looked at, removed and renamed without ever following a link.
/// Paths are absolute, with forward slashes, and may be longer than the system's classic limit.
namespace platform {

enum class EntryKind {
    Missing,
    File,      ///< anything that is neither folder nor link
    Directory, ///< a real folder
    Link,      ///< a symbolic link or a junction, whatever it points to and whether that exists
};

RIVETPLATFORM_EXPORT EntryKind entryKind(const QString &path);

struct RemovalAttempt
{
    bool removed = false; ///< the name is gone, also when it had not been there
    bool passing = false; ///< the failure may pass: somebody holds the entry just now
    QString failure;      ///< why it failed, in the system's words
};

/// Removes one file, one link (never what it points to) or one empty folder, write-protected or
/// not. Tries once and does not block.
RIVETPLATFORM_EXPORT RemovalAttempt removeEntry(const QString &path, EntryKind kind);

enum class RenameOutcome {
    Renamed,
    OtherFileSystem, ///< only a copy gets there; nothing has changed
    Failed,          ///< nothing has changed
};

/// Gives the entry @p from, be it a link itself, the name @p to in one step. Never replaces an
/// entry; does not block.
RIVETPLATFORM_EXPORT RenameOutcome renameEntry(const QString &from, const QString &to);

/// Makes sure that entries of the real folder @p path may be removed by its owner.
RIVETPLATFORM_EXPORT void openForRemoval(const QString &path);

/// A form of @p path that is equal for two spellings of one file name: as it is where names differ
/// by case, case-folded where they do not.
RIVETPLATFORM_EXPORT QString comparableName(const QString &path);

} // namespace platform
