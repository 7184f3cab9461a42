#pragma once

#include <atomic>
#include <optional>
#include <vector>

#include <QMutex>
#include <QString>

#include "support/archivekit/ArchiveReader.h"
#include "support/archivekit/StagingFolder.h"

namespace archivekit {

/// The unpacking of one archive into one folder: all of it, or nothing.
///
/// A zip archive is judged as a whole before a byte is written, then unpacked by several threads.
/// The other formats come as one stream, in which the size of what follows is not known: each
/// entry is judged as it comes, and what had been written goes when one is refused.
class Extraction
{
public:
    Extraction(QString archivePath, QString targetDirectory);

    /// Does the work and returns when it is done; to be called once. False if the archive was
    /// refused or could not be unpacked; a log line then says why, unless cancel() was called.
    [[nodiscard]] bool run();

    /// Makes run() return false soon. Any thread.
    void cancel();

    /// Bytes of content. Until run() is through, the total of a stream is a guess. Any thread.
    struct Progress
    {
        quint64 done = 0;
        quint64 total = 0;
    };
    Progress progress() const;

private:
    bool unpackZip();
    bool unpackStream();
    bool prepareAndMakeFolders(const QStringList &folders);
    struct ZipWorker;
    bool unpackBatch(ZipWorker &worker, const std::vector<size_t> &batch);
    bool writeEntry(ArchiveReader &reader, const EntryHeader &entry, const QString &path);
    bool writeContent(ArchiveReader &reader, const EntryHeader &entry, QFile &file);
    bool commit();
    bool fail(const QString &entry, const QString &why);

    const QString m_archivePath;
    const QString m_targetDirectory;
    std::optional<StagingFolder> m_staging;
    bool m_isStream = false;
    int m_foldersMade = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<quint64> m_done{0};
    std::atomic<quint64> m_total{0};
    QMutex m_failing;
    bool m_hasFailed = false; ///< or was cancelled: what fails from now on is a consequence
};

} // namespace archivekit
