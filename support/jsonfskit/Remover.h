#pragma once

#include <chrono>

#include <QSet>
#include <QString>
#include <QStringList>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"

namespace FS {

/// The one routine of the tree that removes files and folders, behind the functions of FS. An
/// object serves one call; its waits for held entries count against one purse.
class Remover
{
public:
    RemovalResult removeFile(const QString &path);
    RemovalResult removeTree(const QString &path);
    RemovalResult clearFolder(const QString &folder, const QStringList &exclude, ClearScope scope);

private:
    bool isRefused(const QString &path);
    void keep(const QString &folder, const QStringList &exclude);
    bool isKept(const platform::NativePath &path, platform::EntryKind kind) const;
    bool removeContent(const platform::NativePath &folder, ClearScope scope);
    bool removeAny(const platform::NativePath &path, platform::EntryKind kind);
    bool removeEntry(const platform::NativePath &path, platform::EntryKind kind);
    void fail(const QString &path, const QString &why);

    QSet<QString> m_kept;      ///< comparable absolute paths that stay
    QSet<QString> m_keptAbove; ///< the folders above them, up to the cleared one
    std::chrono::milliseconds m_waited{0};
    RemovalResult m_result;
};

} // namespace FS
