#pragma once

#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "support/jsonfskit/JsonFsKitExport.h"

/// Whole files and their removal. Any thread; every call blocks until it is done.
namespace FS {

/// Makes the directory @p path with all above it; true as well if it is there. Unlike
/// QDir::mkpath() it does not fail on Windows where another thread makes one of them at the same
/// time.
[[nodiscard]] JSONFSKIT_EXPORT bool makeFolder(const QString &path);

/// Creates the directories above the file @p filePath; false if it cannot.
JSONFSKIT_EXPORT bool ensureFilePathExists(QString filePath);

/// All bytes of a file; nothing if it is missing or cannot be read.
[[nodiscard]] JSONFSKIT_EXPORT std::optional<QByteArray> readFile(const QString &path);

/// Replaces the content of @p path as a whole, by a rename: afterwards the file holds @p data, or
/// on false, what it held before. Makes missing directories. In a folder that takes no new file an
/// existing one is written directly; only there a failing disk can leave it torn.
[[nodiscard]] JSONFSKIT_EXPORT bool writeFile(const QString &path, const QByteArray &data);

enum class WriteResult {
    Written,
    NotOpened,  ///< no file can be had at this path; nothing has changed
    NotWritten, ///< it could be had, but the disk did not take the data
};

/// As writeFile(), for what concerns nobody but the owner: on POSIX neither the file nor the folder
/// that it lies in is open to others afterwards. On Windows the folders of the user see to that.
[[nodiscard]] JSONFSKIT_EXPORT WriteResult writePrivateFile(const QString &path,
                                                            const QByteArray &data);

/// How a removal ended.
struct RemovalResult
{
    QString firstFailure; ///< the first path that could not be removed; empty when all went

    explicit operator bool() const { return firstFailure.isNull(); }
};

/// Removal never follows a symbolic link or a junction: it removes the link itself. An empty path,
/// the root of a file system or share, the home directory and what holds it, and every path with a
/// ".." in it are refused. What is not there counts as removed. An entry that somebody holds just
/// now is tried again, for two seconds in one call altogether; what cannot be removed does not keep
/// the rest from going. Each failure is a log line.

/// Removes one file or one link; a real directory is refused.
JSONFSKIT_EXPORT RemovalResult removeFile(const QString &path);

/// Removes @p path with all that lies below it.
JSONFSKIT_EXPORT RemovalResult removeTree(const QString &path);

enum class ClearScope {
    WholeTree,   ///< everything below the folder
    DirectFiles, ///< only the files that lie in the folder itself
};

/// Removes what lies in @p folder and keeps the folder itself. The paths of @p exclude, relative to
/// the folder or absolute, stay with all their content; folders that this empties go. A @p folder
/// that is itself a link is refused.
JSONFSKIT_EXPORT RemovalResult clearFolder(const QString &folder, const QStringList &exclude,
                                           ClearScope scope);

} // namespace FS
