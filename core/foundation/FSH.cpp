#include "core/foundation/FSH.h"

#include <algorithm>
#include <cwchar>
#include <limits>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "core/foundation/Environment.h"
#include "core/foundation/FileMove.h"
#include "core/foundation/MCSettings.h"
#include "platform/FileEntry.h"
#include "platform/LocalAppData.h"
#include "platform/VersionStrings.h"
#include "support/coresupport/DirectoryNames.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace FSH {

namespace {

using platform::EntryKind;

constexpr QDir::Filters allEntries =
    QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

struct TypeFolders
{
    ResType type;
    const char *inGame;
    const char *download;
};

const TypeFolders &foldersOf(ResType type)
{
    static const TypeFolders table[] = {
        {ResTypeMods, "mods", g_respath_mods_name},
        {ResTypeSaves, "saves", g_respath_saves_name},
        {ResTypeResourcePacks, "resourcepacks", g_respath_textures_name},
        {ResTypeJava, "", g_respath_java_name},
        {ResTypeSkins, "", g_respath_skins_name},
        {ResTypeCloaks, "", g_respath_cloaks_name},
        {ResTypeOther, "", g_respath_other_name},
        {ResTypeShaders, "shaderpacks", g_respath_shaders_name},
        {ResTypeGame, "", g_respath_game_name},
    };
    static const TypeFolders none = {ResType(0), "", ""};
    const auto *found = std::find_if(std::begin(table), std::end(table),
                                     [type](const auto &row) { return row.type == type; });
    return found == std::end(table) ? none : *found;
}

QString below(const QString &dir, const QString &name)
{
    return dir % QDir::separator() % name;
}

/// @p above holds the real paths of the directories that the walk stands in.
void appendEntries(QStringList &list, const QString &dir, const QStringList &above)
{
    const QString realPath = platform::realPath(dir);
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

EntryKind kindOf(const QString &path)
{
    return platform::entryKind(QDir().absoluteFilePath(path));
}

bool moveFile(const QString &from, const QString &to, bool keepTarget)
{
    if (kindOf(from) == EntryKind::Missing)
        return false;
    // A file that is moved onto itself is not removed first. Its name may still change its case.
    const bool isSame = FileMove::isSameEntry(from, to);
    if (isSame && QFileInfo(from).fileName() == QFileInfo(to).fileName())
        return false;
    if (!isSame && !keepTarget && kindOf(to) != EntryKind::Missing)
        FileMove::removeTarget(to);
    return FileMove::rename(from, to);
}

bool moveContent(const QString &from, const QString &to, bool keepTarget)
{
    // Read before the target is made: it may lie in the source.
    const QStringList names = QDir(from).entryList(allEntries, QDir::Unsorted);
    if (!FS::makeFolder(to))
        return false;
    return std::all_of(names.begin(), names.end(), [&](const QString &name) {
        // A link to a directory is moved as a link: what it points to is not ours to move.
        const QString source = below(from, name);
        return kindOf(source) == EntryKind::Directory
                   ? moveContent(source, below(to, name), keepTarget)
                   : moveFile(source, below(to, name), keepTarget);
    });
}

QString versionOfHost(const char *name)
{
    return platform::versionString(
        QCoreApplication::applicationDirPath() % QLatin1String("/rivet.exe"), QLatin1String(name));
}

} // namespace

QString absolutePathWithAppDir(const QString &path)
{
    QString absolute = path;
    if (QDir(absolute).isRelative())
        absolute = QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(absolute);
    absolute = QDir::cleanPath(absolute);
    // QDir::exists() takes a file for a directory.
    if (FS::makeFolder(absolute))
        return absolute;
    Log::critical(QStringLiteral("it has not game data path."));
    return {};
}

QString gameDataAbsolutePath()
{
    const std::shared_ptr<MCSettings> settings = Environment::GetInstance()->settings();
    if (!settings) {
        Log::critical(QStringLiteral("get MCSetting instance pointer failed."));
        return {};
    }
    const QString path = settings->value(QStringLiteral("DataPath"), QVariant()).toString();
    if (path.isEmpty()) {
        Log::critical(QStringLiteral("game data path could not be empty!"));
        return {};
    }
    return absolutePathWithAppDir(path);
}

QString instancePathDir(unsigned int id, QString name)
{
    const QString folder = name % QLatin1Char('(') % QString::number(id) % QLatin1Char(')');
    const QString instances = below(gameDataAbsolutePath(), QStringLiteral("instances"));
    return QDir::cleanPath(below(instances, folder));
}

QString dirNameInGame(ResType type)
{
    return QLatin1String(foldersOf(type).inGame);
}

QString resourceDownloadBaseDir()
{
    return QDir::cleanPath(below(gameDataAbsolutePath(), QLatin1String(g_respath_base_name)));
}

QString resourceDownloadDir(ResType type)
{
    return QDir::cleanPath(
        below(resourceDownloadBaseDir(), QLatin1String(foldersOf(type).download)));
}

QString localAppDataPath()
{
    const QString folder = platform::LocalAppData::current().directory();
    if (folder.isEmpty())
        return {};
    return QDir::cleanPath(folder % QLatin1String("/oriel/rivet"));
}

QStringList getFileListFromDirRecursively(const QString &dir)
{
    QStringList list;
    if (QFileInfo(dir).isDir())
        appendEntries(list, dir, {});
    return list;
}

bool moveFileRecursively(const QString &from, const QString &to, bool keepTarget)
{
    // A file that is a shortcut to a directory passes for one on Windows.
    const bool isDirectory = kindOf(from) != EntryKind::File && QFileInfo(from).isDir();
    return isDirectory ? moveContent(from, to, keepTarget) : moveFile(from, to, keepTarget);
}

QString getRivetDisplayVer()
{
    return versionOfHost("ProductVersion");
}

unsigned int getRivetIntervalNumVer()
{
    const QString mark = QStringLiteral("Build-");
    const QString version = versionOfHost("FileVersion");
    const int begin = version.indexOf(mark);
    if (begin < 0)
        return 0;
    // As a 32-bit long would hold it, on every system.
    const long long number =
        std::wcstoll(version.mid(begin + mark.size()).toStdWString().c_str(), nullptr, 10);
    return static_cast<unsigned int>(
        qBound<long long>(0, number, std::numeric_limits<qint32>::max()));
}

} // namespace FSH
