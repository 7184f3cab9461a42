#pragma once

#include <QSet>
#include <QString>

/// Where the stored logins lie: the one place that makes file names of user names.
///
/// A name that a file name can hold on every system stays as it is. What it can't hold is
/// percent-encoded, as UTF-8 with capital digits: / \ : * ? " < > | % and control characters, dots
/// and blanks at the end, and the first character of a device's name or of the name of one of our
/// own files. Where the file system takes the result for a folder of another spelling, capitals are
/// encoded as well. If that does not help, if the name is too long, or if the system can't write
/// it, "%-" and the SHA-256 of the name stand for it. So every user has a place of his own, below
/// the folder, that stays the same from start to start.
///
/// An object knows the folder as it was when it was made or lookAgain() was called. Not
/// thread-safe.
class UserFiles
{
public:
    /// @p baseDir is the local data directory. Where it is empty, so are all paths.
    explicit UserFiles(const QString &baseDir);

    void lookAgain();

    /// The names of all users.
    QString usersFile() const;
    /// A save that is under way.
    QString pendingSaveFile() const;
    /// The folder of @p userName, which need not be there; empty for an empty name.
    QString folderOf(const QString &userName) const;
    /// The record in that folder; empty for an empty name.
    QString recordOf(const QString &userName) const;

private:
    bool hasPlace(const QString &userName) const;
    QString fileNameOf(const QString &userName) const;
    bool isTaken(const QString &fileName) const;

    const QString m_folder; ///< with a separator at its end, or empty
    QSet<QString> m_entries;
};
