#include "support/jsonfskit/Remover.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QThread>

#include "support/jsonfskit/Log.h"

namespace FS {

using platform::EntryKind;

namespace {

// A caller hears within two seconds that an entry is held for good.
constexpr std::chrono::milliseconds longestWait(1900);
constexpr std::chrono::milliseconds pauseBetweenTries(20);

QString comparable(const QString &path)
{
    return platform::comparableName(QDir::cleanPath(path));
}

/// Why nothing may be removed at @p path; empty if it may.
QString refusal(const QString &path)
{
    if (path.isEmpty())
        return QStringLiteral("the path is empty");
    if (QDir::fromNativeSeparators(path).split(QLatin1Char('/')).contains(QLatin1String("..")))
        return QStringLiteral("the path climbs out with \"..\"");
    const QString absolute = QDir::cleanPath(QDir(path).absolutePath());
    if (QDir(absolute).isRoot())
        return QStringLiteral("the path is a root");
    const QString home = comparable(QDir::homePath()) % QLatin1Char('/');
    const QString real = QDir(absolute).canonicalPath();
    for (const QString &form : {absolute, real}) {
        if (!form.isEmpty() && home.startsWith(QString(comparable(form) % QLatin1Char('/'))))
            return QStringLiteral("the path is the home directory or holds it");
    }
    return {};
}

} // namespace

RemovalResult Remover::removeFile(const QString &path)
{
    if (isRefused(path))
        return m_result;
    const EntryKind kind = platform::entryKind(QDir().absoluteFilePath(path));
    if (kind == EntryKind::Directory)
        fail(path, QStringLiteral("it is a directory"));
    else
        removeAny(QDir().absoluteFilePath(path), kind);
    return m_result;
}

RemovalResult Remover::removeTree(const QString &path)
{
    if (!isRefused(path)) {
        const QString absolute = QDir::cleanPath(QDir().absoluteFilePath(path));
        removeAny(absolute, platform::entryKind(absolute));
    }
    return m_result;
}

RemovalResult Remover::clearFolder(const QString &folder, const QStringList &exclude,
                                   ClearScope scope)
{
    if (isRefused(folder))
        return m_result;
    const QString absolute = QDir::cleanPath(QDir().absoluteFilePath(folder));
    switch (platform::entryKind(absolute)) {
    case EntryKind::Missing:
        break;
    case EntryKind::Directory:
        keep(absolute, exclude);
        removeContent(absolute, scope);
        break;
    case EntryKind::File:
    case EntryKind::Link:
        fail(absolute, QStringLiteral("it is no directory of ours"));
        break;
    }
    return m_result;
}

bool Remover::isRefused(const QString &path)
{
    const QString why = refusal(path);
    if (!why.isEmpty())
        fail(path, why);
    return !why.isEmpty();
}

void Remover::keep(const QString &folder, const QStringList &exclude)
{
    const QDir base(folder);
    const QString top = comparable(folder);
    for (const QString &path : exclude) {
        if (path.isEmpty())
            continue;
        QString kept = comparable(base.absoluteFilePath(path));
        m_kept.insert(kept);
        while (kept.size() > top.size() && kept.contains(QLatin1Char('/'))) {
            kept.truncate(kept.lastIndexOf(QLatin1Char('/')));
            m_keptAbove.insert(kept);
        }
    }
}

/// A link on the way to a kept path stays too, for without it the path would be gone.
bool Remover::isKept(const QString &path, EntryKind kind) const
{
    if (m_kept.isEmpty())
        return false;
    const QString name = platform::comparableName(path);
    return m_kept.contains(name) || (kind == EntryKind::Link && m_keptAbove.contains(name));
}

/// True if nothing is left in @p folder.
bool Remover::removeContent(const QString &folder, ClearScope scope)
{
    platform::openForRemoval(folder);
    // The names are read before the first one goes: an iterator over a folder that changes may
    // leave entries out.
    QStringList names;
    for (QDirIterator it(folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
         it.hasNext();) {
        it.next();
        names << it.fileName();
    }

    bool isEmpty = true;
    for (const QString &name : qAsConst(names)) {
        const QString path = folder % QLatin1Char('/') % name;
        const EntryKind kind = platform::entryKind(path);
        const bool outOfScope = scope == ClearScope::DirectFiles && kind == EntryKind::Directory;
        if (outOfScope || isKept(path, kind) || !removeAny(path, kind))
            isEmpty = false;
    }
    return isEmpty;
}

/// True if the entry is gone.
bool Remover::removeAny(const QString &path, EntryKind kind)
{
    if (kind == EntryKind::Directory && !removeContent(path, ClearScope::WholeTree))
        return false;
    return removeEntry(path, kind);
}

bool Remover::removeEntry(const QString &path, EntryKind kind)
{
    platform::RemovalAttempt attempt = platform::removeEntry(path, kind);
    while (!attempt.removed && attempt.passing && m_waited < longestWait) {
        QElapsedTimer waiting;
        waiting.start();
        QThread::msleep(static_cast<unsigned long>(pauseBetweenTries.count()));
        attempt = platform::removeEntry(path, kind);
        m_waited += std::chrono::milliseconds(waiting.elapsed());
    }
    if (!attempt.removed)
        fail(path, attempt.failure);
    return attempt.removed;
}

void Remover::fail(const QString &path, const QString &why)
{
    Log::warning(QLatin1String("can not remove \"") % path % QLatin1String("\": ") % why);
    if (m_result.firstFailure.isNull())
        m_result.firstFailure = path.isNull() ? QStringLiteral("") : path;
}

} // namespace FS
