#include "core/foundation/FSH.h"

#include <QDir>
#include <QFileInfo>

namespace FSH {

namespace {

constexpr QDir::Filters allEntries =
    QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

/// @p above holds the real paths of the directories that the walk stands in.
void appendEntries(QStringList &list, const QString &dir, const QStringList &above)
{
    const QString realPath = QFileInfo(dir).canonicalFilePath();
    if (above.contains(realPath))
        return;
    const QFileInfoList entries = QDir(dir).entryInfoList(allEntries, QDir::Unsorted);
    for (const QFileInfo &entry : entries) {
        if (entry.isFile() || entry.isDir())
            list << entry.absoluteFilePath();
        if (entry.isDir())
            appendEntries(list, entry.absoluteFilePath(), QStringList(above) << realPath);
    }
}

} // namespace

QString dirNameInGame(ResType type)
{
    switch (type) {
    case ResTypeMods:
        return QStringLiteral("mods");
    case ResTypeSaves:
        return QStringLiteral("saves");
    case ResTypeResourcePacks:
        return QStringLiteral("resourcepacks");
    case ResTypeShaders:
        return QStringLiteral("shaderpacks");
    default:
        return {};
    }
}

QStringList getFileListFromDirRecursively(const QString &dir)
{
    QStringList list;
    if (QFileInfo(dir).isDir())
        appendEntries(list, dir, {});
    return list;
}

} // namespace FSH
