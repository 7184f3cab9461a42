#include "support/archivekit/StagingFolder.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace archivekit {

using platform::EntryKind;

StagingFolder::StagingFolder(QString targetDirectory)
    : m_target(targetDirectory.isEmpty()
                   ? QString()
                   : QDir::cleanPath(QDir().absoluteFilePath(targetDirectory)))
{
}

StagingFolder::~StagingFolder()
{
    m_root.reset();
    if (m_isCommitted)
        return;
    // Only empty folders go this way: what somebody else put there meanwhile stays.
    for (auto it = m_madeFolders.crbegin(); it != m_madeFolders.crend(); ++it)
        QDir().rmdir(*it);
}

bool StagingFolder::prepare()
{
    if (m_target.isEmpty() || !makeTarget())
        return fail({}, QStringLiteral("the target folder can not be made"));
    StagingRoot::recoverLeftovers(m_target);
    m_root = StagingRoot::make(m_target);
    return m_root || fail({}, QStringLiteral("no folder can be made in the target folder"));
}

QString StagingFolder::contentPath() const
{
    return m_root ? m_root->newPath() : QString();
}

bool StagingFolder::commit()
{
    m_isCommitted = mergeFolder({});
    if (m_isCommitted)
        m_root->dropOld();
    else
        undo();
    return m_isCommitted;
}

bool StagingFolder::makeTarget()
{
    QStringList missing;
    for (QString folder = m_target; !QFileInfo::exists(folder) && !QDir(folder).isRoot();
         folder = QFileInfo(folder).path())
        missing.prepend(folder);
    for (const QString &folder : qAsConst(missing)) {
        if (QDir().mkdir(folder))
            m_madeFolders << folder;
    }
    return QFileInfo(m_target).isDir();
}

bool StagingFolder::mergeFolder(const QString &relative)
{
    const QStringList names = namesIn(contentPath() % relative);
    return std::all_of(names.begin(), names.end(), [&](const QString &name) {
        return place(relative % QLatin1Char('/') % name);
    });
}

/// Brings one name of the content to the target; @p relative begins with a slash.
bool StagingFolder::place(const QString &relative)
{
    const QString from = contentPath() % relative;
    const QString to = m_target % relative;
    const bool isFolder = platform::entryKind(platform::toNative(from)) == EntryKind::Directory;
    switch (platform::entryKind(platform::toNative(to))) {
    case EntryKind::Missing:
        return move(from, to) || fail(relative, QStringLiteral("it can not be moved into place"));
    case EntryKind::Directory:
        return isFolder ? mergeFolder(relative)
                        : fail(relative, QStringLiteral("a folder is in the file's place"));
    case EntryKind::File:
    case EntryKind::Link:
        break;
    }
    if (isFolder)
        return fail(relative, QStringLiteral("a file or a link is in the folder's place"));
    const QString old = m_root->oldPath() % relative;
    return (FS::ensureFilePathExists(old) && move(to, old) && move(from, to)) ||
           fail(relative, QStringLiteral("the file that is there can not be replaced"));
}

bool StagingFolder::move(const QString &from, const QString &to)
{
    if (!moveEntry(from, to, m_waited))
        return false;
    m_moves.push_back({from, to});
    return true;
}

void StagingFolder::undo()
{
    for (auto it = m_moves.crbegin(); it != m_moves.crend(); ++it) {
        if (moveEntry(it->to, it->from, m_waited))
            continue;
        Log::critical(QLatin1String("can not move \"") % it->to % QLatin1String("\" back to \"") %
                      it->from % QLatin1Char('"'));
        m_root->keep();
    }
    m_moves.clear();
}

bool StagingFolder::fail(const QString &relative, const QString &why)
{
    m_failedPath = relative.mid(1);
    m_failure = why;
    return false;
}

} // namespace archivekit
