#pragma once

#include <filesystem>
#include <vector>

#include <QString>

#include "platform/RivetPlatformExport.h"

/// One entry of a folder, looked at, removed and renamed without ever following a link.
///
/// Paths are absolute and in the system's own form, which also holds names that a QString cannot,
/// and on Windows is not limited to 260 characters.
namespace platform {

using NativePath = std::filesystem::path;

RIVETPLATFORM_EXPORT NativePath toNative(const QString &absolutePath);
/// For people and for comparison; the way back to the entry is not always there.
RIVETPLATFORM_EXPORT QString fromNative(const NativePath &path);

enum class EntryKind {
    Missing,
    File,      ///< anything that is neither folder nor link, and what cannot be looked at
    Directory, ///< a real folder
    Link,      ///< a symbolic link or a junction, whatever it points to and whether that exists
};

RIVETPLATFORM_EXPORT EntryKind entryKind(const NativePath &path);
inline EntryKind entryKind(const QString &absolutePath)
{
    return entryKind(toNative(absolutePath));
}

struct FolderEntry
{
    NativePath path; ///< with the folder's in front
    EntryKind kind;  ///< as the folder told it; never Missing
};

struct FolderListing
{
    std::vector<FolderEntry> entries; ///< in the order of the file system
    QString failure;                  ///< why the list is not whole; empty if it is
};

RIVETPLATFORM_EXPORT FolderListing listFolder(const NativePath &path);

struct RemovalAttempt
{
    bool removed = false; ///< the name is gone, also when it had not been there
    bool passing = false; ///< the failure may pass: somebody holds the entry just now
    QString failure;      ///< why it failed, in the system's words
};

/// Removes one file, one link (never what it points to) or one empty folder, write-protected or
/// not. Tries once and does not block.
RIVETPLATFORM_EXPORT RemovalAttempt removeEntry(const NativePath &path, EntryKind kind);

enum class RenameOutcome {
    Renamed,
    OtherFileSystem, ///< only a copy gets there; nothing has changed
    Held,            ///< somebody holds an entry just now, which may pass; nothing has changed
    Failed,          ///< nothing has changed
};

/// Gives the entry @p from, be it a link itself, the name @p to in one step. Never replaces an
/// entry; does not block.
RIVETPLATFORM_EXPORT RenameOutcome renameEntry(const NativePath &from, const NativePath &to);

/// Makes sure that entries of the real folder @p path may be removed by its owner; where that does
/// not work, their removal will say so.
RIVETPLATFORM_EXPORT void openForRemoval(const NativePath &path);

/// True if both paths lead, through whatever links and spellings, to one existing entry.
RIVETPLATFORM_EXPORT bool isSameEntry(const NativePath &a, const NativePath &b);

/// Where @p path really lies, past links, junctions, mapped drives and spellings of names; as it is
/// if there is nothing.
RIVETPLATFORM_EXPORT QString realPath(const QString &path);

/// True for the root of a file system or of a network share, and for forms that name no entry of
/// a file system at all, such as a device or a drive's current folder.
RIVETPLATFORM_EXPORT bool isRootOrDevice(const QString &path);

/// Gives the file @p from the name @p to in one step, also when a file of that name is there,
/// write-protected or not. Both lie on one file system. Does not wait for who holds one of them.
[[nodiscard]] RIVETPLATFORM_EXPORT RenameOutcome replaceFile(const QString &from,
                                                             const QString &to);

/// Brings what was written to the file @p path to the disk itself, so that it survives a loss of
/// power; may take as long as the disk needs for all of it. False if the disk did not take it;
/// true also where the system cannot tell.
[[nodiscard]] RIVETPLATFORM_EXPORT bool syncFile(const QString &path);

/// A form of @p path that is equal for two spellings of one file name: as it is where names differ
/// by case, case-folded where they do not.
RIVETPLATFORM_EXPORT QString comparableName(const QString &path);

} // namespace platform
