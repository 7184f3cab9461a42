#pragma once

#include <memory>

#include <QObject>
#include <QString>
#include <QThread>
#include <QTimer>

#include "support/archivekit/ArchiveKitExport.h"

namespace archivekit {
class Extraction;
}

/// Unpacks an archive file into a folder: zip, 7z, and tar as it is or packed by gzip, xz or zstd.
///
/// Archives count as hostile. The archive is unpacked as a whole or not at all: when one entry is
/// refused or damaged, or the disk has no room, a line on the log names it and the folder is as it
/// was before. Until the end everything lies in a folder inside the target whose name begins
/// with ".rivet-unpack-"; only a killed process leaves one behind, which the next run in that
/// folder clears away.
///
/// Refused, on every system alike: names that are absolute, climb out by "..", hold a backslash, a
/// colon, control or wildcard characters, end a part with a dot or a blank, or name a device; two
/// entries of one name, or whose names, or the folders above them, differ by case alone; links
/// (also those that stay inside) and special files; encrypted entries; sizes and checksums that are
/// not as announced; more than 200,000 entries. Times and
/// owners are not kept, nor are mode bits other than the executable one.
///
/// Lives on any one thread with an event loop; a local QEventLoop on a pool thread will do. The
/// work is done on threads of its own, for a zip archive on as many as there are processor
/// cores. The owner may destroy it at any time: that ends the work, waits for it, leaves the
/// target as it was and reports nothing.
class ARCHIVEKIT_EXPORT FileInstance : public QObject
{
    Q_OBJECT
public:
    enum class State {
        Idle,      ///< not started yet
        Running,   ///< started, and FileFinished has not gone out yet
        Succeeded, ///< everything is in the target
        Failed,    ///< the target is as it was
    };

    explicit FileInstance(QObject *parent = nullptr);
    ~FileInstance() override;

    /// Begins to unpack the file @p archivePath into @p targetDirectory, and returns at once. The
    /// folder is made if it is missing; what lies in it stays, except files of the same name,
    /// which are replaced. While a run is going on, another one is refused with a log line; after
    /// its end the object can be used again. Everything that fails, fails by FileFinished.
    void Start(QString archivePath, QString targetDirectory);

    /// How the last run ended; changes on the object's own thread only, right before FileFinished.
    State state() const { return m_state; }

Q_SIGNALS:
    /// Bytes of unpacked content. @p done never falls, and neither does its share of @p total; on
    /// success the last one has both equal. The total of formats other than zip is a guess until
    /// then. At most one each 50 ms; none for an archive without content.
    void UnCpercentChanged(quint64 done, quint64 total);

    /// The end of the run, once, by the event loop; the object may be destroyed in a slot.
    void FileFinished(bool success);

private:
    void reportProgress();
    void onFinished();

    State m_state = State::Idle;
    std::unique_ptr<archivekit::Extraction> m_extraction; ///< outlives the thread
    std::unique_ptr<QThread> m_thread;
    bool m_hasSucceeded = false; ///< written by the thread, read when that has ended
    QTimer m_reporting;
    quint64 m_reportedDone = 0;
    quint64 m_reportedTotal = 0;
};
