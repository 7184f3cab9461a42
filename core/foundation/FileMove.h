#pragma once

#include <QString>

/// The steps of FSH::moveFileRecursively() that handle one file. Any thread; they block.
namespace FileMove {

/// Clears the way for a move onto @p target, a file that is there. Failing is a line on the log.
void removeTarget(const QString &target);

/// Gives the entry @p from, be it a link itself, the name @p to. Never replaces an entry; nothing
/// has changed if it returns false. At any moment one of the two is whole, also across file systems
/// and on a full disk.
[[nodiscard]] bool rename(const QString &from, const QString &to);

/// True if both paths name one entry of one directory, in whatever spelling.
[[nodiscard]] bool isSameEntry(const QString &one, const QString &other);

} // namespace FileMove
