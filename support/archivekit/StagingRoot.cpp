#include "support/archivekit/StagingRoot.h"

#include <QDir>
#include <QTemporaryDir>

#include "platform/FileEntry.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/HeldEntry.h"
#include "support/jsonfskit/Log.h"

namespace archivekit {

using platform::EntryKind;
using platform::RenameOutcome;
using platform::toNative;

namespace {

const QLatin1String namePrefix(".rivet-unpack-");

/// Brings what lies in @p folder and is missing in @p target there; false if something stays that
/// is missing.
bool putBack(const QString &folder, const QString &target, std::chrono::milliseconds &waited)
{
    bool isBack = true;
    for (const QString &name : namesIn(folder)) {
        const QString from = folder % QLatin1Char('/') % name;
        const QString to = target % QLatin1Char('/') % name;
        const EntryKind kind = platform::entryKind(to);
        if (kind == EntryKind::Missing)
            isBack = moveEntry(from, to, waited) && isBack;
        else if (kind == EntryKind::Directory && platform::entryKind(from) == kind)
            isBack = putBack(from, to, waited) && isBack;
    }
    return isBack;
}

} // namespace

StagingRoot::StagingRoot(const QString &path) : m_path(path), m_lock(path % QLatin1String("/lock"))
{
    // However long an extraction takes, only its end makes the lock void.
    m_lock.setStaleLockTime(0);
}

StagingRoot::~StagingRoot()
{
    // The lock goes last: without it another process would clear away too.
    if (!m_isKept) {
        for (const char *name : {"/new", "/old", "/done"})
            FS::removeTree(m_path % QLatin1String(name));
    }
    m_lock.unlock();
    QDir().rmdir(m_path);
}

std::unique_ptr<StagingRoot> StagingRoot::make(const QString &target)
{
    QTemporaryDir folder(target % QLatin1Char('/') % namePrefix % QLatin1String("XXXXXX"));
    folder.setAutoRemove(false);
    if (!folder.isValid())
        return nullptr;
    std::unique_ptr<StagingRoot> root(new StagingRoot(folder.path()));
    const bool isMade =
        root->m_lock.tryLock(0) && QDir().mkdir(root->newPath()) && QDir().mkdir(root->oldPath());
    return isMade ? std::move(root) : nullptr;
}

void StagingRoot::recoverLeftovers(const QString &target)
{
    std::chrono::milliseconds waited{0};
    for (const QString &name : namesIn(target)) {
        const QString path = target % QLatin1Char('/') % name;
        // An empty one is just coming or going.
        if (!name.startsWith(namePrefix) || platform::entryKind(path) != EntryKind::Directory ||
            namesIn(path).isEmpty())
            continue;
        StagingRoot root(path);
        if (!root.m_lock.tryLock(0)) {
            root.keep();
            continue;
        }
        Log::warning(QLatin1String("clearing away what a killed process left in ") % path);
        if (!putBack(root.oldPath(), target, waited))
            root.keep();
    }
}

void StagingRoot::dropOld()
{
    QDir().rename(oldPath(), m_path % QLatin1String("/done"));
}

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

bool moveEntry(const QString &from, const QString &to, std::chrono::milliseconds &waited)
{
    RenameOutcome outcome{};
    FS::tryWhileHeld(waited, [&] {
        outcome = platform::renameEntry(toNative(from), toNative(to));
        return outcome == RenameOutcome::Held;
    });
    // Another file system may be mounted below the target: Qt copies a file there.
    return outcome == RenameOutcome::Renamed ||
           (outcome == RenameOutcome::OtherFileSystem && QFile::rename(from, to));
}

} // namespace archivekit
