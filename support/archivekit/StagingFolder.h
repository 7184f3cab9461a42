#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include <QString>
#include <QStringList>

#include "support/archivekit/StagingRoot.h"

namespace archivekit {

/// What an archive is unpacked into, inside the target, before its content goes to the target as a
/// whole.
///
/// Until commit() succeeds, the target is as it was: what the destructor finds uncommitted goes,
/// and with it the folders above that prepare() made. One thread at a time.
class StagingFolder
{
public:
    explicit StagingFolder(QString targetDirectory);
    ~StagingFolder();
    StagingFolder(const StagingFolder &) = delete;
    StagingFolder &operator=(const StagingFolder &) = delete;

    /// Makes the folder, and the target where that is missing. Clears away what killed processes
    /// have left there, but first puts back what they took out of the target.
    [[nodiscard]] bool prepare();
    /// Where to unpack to.
    QString contentPath() const;

    /// Moves the content to the target. A file that lay there under the same name is replaced,
    /// folders of one name become one. On false the target is as before.
    [[nodiscard]] bool commit();

    QString failure() const { return m_failure; }
    /// What the failure is about, relative to the target.
    QString failedPath() const { return m_failedPath; }

private:
    bool makeTarget();
    bool mergeFolder(const QString &relative);
    bool place(const QString &relative);
    bool move(const QString &from, const QString &to);
    void undo();
    bool fail(const QString &relative, const QString &why);

    struct Move
    {
        QString from;
        QString to;
    };
    QString m_target;
    std::unique_ptr<StagingRoot> m_root;
    std::chrono::milliseconds m_waited{0}; ///< for files that somebody held
    QStringList m_madeFolders;
    std::vector<Move> m_moves;
    bool m_isCommitted = false;
    QString m_failure;
    QString m_failedPath;
};

} // namespace archivekit
