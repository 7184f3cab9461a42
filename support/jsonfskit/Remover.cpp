#include "support/jsonfskit/Remover.h"

#include <QDir>

#include "platform/MachineInfo.h"
#include "support/jsonfskit/HeldEntry.h"
#include "support/jsonfskit/Log.h"

namespace FS {

using platform::EntryKind;
using platform::NativePath;

namespace {

QString absolute(const QString &path)
{
    return QDir::cleanPath(QDir().absoluteFilePath(path));
}

QString comparable(const QString &path)
{
    return platform::comparableName(absolute(path));
}

/// True if @p path is the home directory or holds it, however it is spelt.
bool holdsHome(const QString &path)
{
    const NativePath native = platform::toNative(absolute(path));
    if (platform::entryKind(native) != EntryKind::Directory)
        return false;
    QDir above(platform::MachineInfo::current().homePath());
    do {
        if (platform::isSameEntry(native, platform::toNative(above.absolutePath())))
            return true;
    } while (above.cdUp());
    return false;
}

/// Why nothing may be removed at @p path; empty if it may.
QString refusal(const QString &path)
{
    if (path.isEmpty())
        return QStringLiteral("the path is empty");
    if (QDir::fromNativeSeparators(path).split(QLatin1Char('/')).contains(QLatin1String("..")))
        return QStringLiteral("the path climbs out with \"..\"");
    if (platform::isRootOrDevice(path))
        return QStringLiteral("the path is a root or a device");
    if (holdsHome(path))
        return QStringLiteral("the path is the home directory or holds it");
    return {};
}

} // namespace

RemovalResult Remover::removeFile(const QString &path)
{
    if (isRefused(path))
        return m_result;
    const NativePath native = platform::toNative(absolute(path));
    const EntryKind kind = platform::entryKind(native);
    if (kind == EntryKind::Directory)
        fail(path, QStringLiteral("it is a directory"));
    else
        removeAny(native, kind);
    return m_result;
}

RemovalResult Remover::removeTree(const QString &path)
{
    if (isRefused(path))
        return m_result;
    const NativePath native = platform::toNative(absolute(path));
    removeAny(native, platform::entryKind(native));
    return m_result;
}

RemovalResult Remover::clearFolder(const QString &folder, const QStringList &exclude,
                                   ClearScope scope)
{
    if (isRefused(folder))
        return m_result;
    const NativePath native = platform::toNative(absolute(folder));
    const EntryKind kind = platform::entryKind(native);
    keep(absolute(folder), exclude);
    if (kind == EntryKind::Directory) {
        if (!isKept(native, kind))
            removeContent(native, scope);
    } else if (kind != EntryKind::Missing) {
        fail(folder, QStringLiteral("it is no directory of ours"));
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
    const QString top = platform::comparableName(folder);
    for (const QString &path : exclude) {
        if (path.isEmpty())
            continue;
        QString kept = comparable(QDir(folder).absoluteFilePath(path));
        const QString below = kept.endsWith(QLatin1Char('/')) ? kept : kept % QLatin1Char('/');
        if (top.startsWith(below))
            kept = top; // what holds the folder keeps the folder
        m_kept.insert(kept);
        while (kept.size() > top.size() && kept.contains(QLatin1Char('/'))) {
            kept.truncate(kept.lastIndexOf(QLatin1Char('/')));
            m_keptAbove.insert(kept);
        }
    }
}

/// A link on the way to a kept path stays too, for without it the path would be gone.
bool Remover::isKept(const NativePath &path, EntryKind kind) const
{
    const QString name = platform::comparableName(platform::fromNative(path));
    return m_kept.contains(name) || (kind == EntryKind::Link && m_keptAbove.contains(name));
}

/// True if nothing is left in @p folder.
bool Remover::removeContent(const NativePath &folder, ClearScope scope)
{
    platform::openForRemoval(folder);
    // The list is read before the first entry goes: a folder that changes meanwhile may leave
    // entries out.
    const platform::FolderListing listing = platform::listFolder(folder);
    bool isEmpty = listing.failure.isEmpty();
    if (!isEmpty)
        fail(platform::fromNative(folder), listing.failure);
    const bool holdsKept =
        m_keptAbove.contains(platform::comparableName(platform::fromNative(folder)));
    for (const auto &[path, listedKind] : listing.entries) {
        // What was a folder may be a link by now, and is looked at before it is entered.
        const EntryKind kind =
            listedKind == EntryKind::Directory ? platform::entryKind(path) : listedKind;
        const bool outOfScope = scope == ClearScope::DirectFiles && kind == EntryKind::Directory;
        if (outOfScope || (holdsKept && isKept(path, kind)) || !removeAny(path, kind))
            isEmpty = false;
    }
    return isEmpty;
}

/// True if the entry is gone.
bool Remover::removeAny(const NativePath &path, EntryKind kind)
{
    if (kind == EntryKind::Directory && !removeContent(path, ClearScope::WholeTree))
        return false;
    return removeEntry(path, kind);
}

bool Remover::removeEntry(const NativePath &path, EntryKind kind)
{
    platform::RemovalAttempt attempt;
    tryWhileHeld(m_waited, [&] {
        attempt = platform::removeEntry(path, kind);
        return !attempt.removed && attempt.passing;
    });
    if (!attempt.removed)
        fail(platform::fromNative(path), attempt.failure);
    return attempt.removed;
}

void Remover::fail(const QString &path, const QString &why)
{
    Log::warning(QLatin1String("can not remove \"") % path % QLatin1String("\": ") % why);
    if (m_result.firstFailure.isNull())
        m_result.firstFailure = path.isNull() ? QStringLiteral("") : path;
}

} // namespace FS
