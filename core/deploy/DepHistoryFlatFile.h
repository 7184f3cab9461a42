#pragma once

#include <QByteArray>
#include <QMutex>

#include "base/RivetCoreExport.h"
#include "core/deploy/IDeploymentHistory.h"

/// A history in memory and in one file, which is written whole on each save and at the end.
///
/// Any thread: calls on one object are serialised, and files are hashed outside of that. A save
/// that others wait for covers theirs as well. Two objects need two files, or the later save
/// overwrites the earlier; that includes copies.
class RIVETCORE_EXPORT DepHistoryFlatFile : public IDeploymentHistory
{
public:
    DepHistoryFlatFile();
    DepHistoryFlatFile(const DepHistoryFlatFile &other);
    DepHistoryFlatFile &operator=(const DepHistoryFlatFile &other);
    /// Saves; without an init() it says on the log that it can't.
    virtual ~DepHistoryFlatFile();

    /// Reads the history from the file @p path, which also is where it will be saved. Only the
    /// first call counts. A file that can't be read, or isn't of this form, reads as empty and
    /// stays as it is until the next save.
    void init(const QString &path);

    void insertRecord(const QString &deployPath, quint64 resKey, const QStringList &files,
                      const QDateTime &time, bool save) override;
    bool queryRecord(const QString &deployPath, quint64 resKey, DeployRecordItem &item) override;
    bool deleteRecord(const QString &deployPath, quint64 resKey, bool save) override;
    QList<quint64> getDeployResInDeployFolder(const QString &deployPath) override;
    void clearAllRecord() override;

protected:
    /// True if the file at @p path is not for the record. Called on the caller's thread, outside of
    /// all locks.
    virtual bool isIgnoreFile(const QString &path);

    /// Replaces the file as a whole and returns when it is on disk; a failure is a log line, and
    /// the next save tries again.
    void save();

private:
    QHash<QString, QString> sumsOf(const QString &folder, const QStringList &files);

    bool m_inited = false;
    QString m_path;
    QHash<QString, QHash<quint64, DeployRecordItem>> m_table; ///< by the cleaned folder path

    /// The table's records as they stand in the file, so that a save builds none of them again.
    QHash<QString, QHash<quint64, QByteArray>> m_built;
    quint64 m_savesAsked = 0;
    quint64 m_savesDone = 0; ///< those up to here are on disk; guarded by m_fileMutex

    mutable QMutex m_mutex; ///< guards all above
    QMutex m_fileMutex;     ///< one save at a time, so that the newest comes last; taken first
};
