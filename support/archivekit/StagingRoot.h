#pragma once

#include <chrono>
#include <memory>

#include <QLockFile>
#include <QString>
#include <QStringList>

namespace archivekit {

/// One folder of ours inside a target, ".rivet-unpack-XXXXXX", whose owner holds the lock in it. It
/// goes with this object. One whose lock nobody holds was left by a process that was killed.
///
///     lock   names the process
///     new/   what is unpacked
///     old/   what the move to the target has replaced, under its own relative path
///     done/  the same, when the move is through and nothing goes back any more
class StagingRoot
{
public:
    /// Makes a new one in the folder @p target; null if it cannot.
    static std::unique_ptr<StagingRoot> make(const QString &target);
    /// Clears away all that ended processes have left in @p target. Where one was killed in the
    /// middle of its move, the replaced files that have no successor yet go back first.
    static void recoverLeftovers(const QString &target);

    ~StagingRoot();
    StagingRoot(const StagingRoot &) = delete;
    StagingRoot &operator=(const StagingRoot &) = delete;

    QString newPath() const { return m_path % QLatin1String("/new"); }
    QString oldPath() const { return m_path % QLatin1String("/old"); }
    /// The move is through: the replaced files are no longer needed.
    void dropOld();
    /// Something in it must not be lost: it stays, and counts as left over.
    void keep() { m_isKept = true; }

private:
    explicit StagingRoot(const QString &path);

    const QString m_path;
    QLockFile m_lock;
    bool m_isKept = false;
};

/// Also hidden files and broken links.
QStringList namesIn(const QString &folder);

/// Renames and never replaces. What somebody holds is tried again, against the purse @p waited.
[[nodiscard]] bool moveEntry(const QString &from, const QString &to,
                             std::chrono::milliseconds &waited);

} // namespace archivekit
