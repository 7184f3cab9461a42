#pragma once

#include <QFile>
#include <QString>
#include <QUrl>

#include "platform/FileEntry.h"
#include "support/transferservice/DownloadRecord.h"

/// What the disk holds of one download: the complete file, the part, and the state file that tells
/// what server and version they came from.
///
/// Bytes that append() took survive the end of the process at once. Each call that returns false
/// left its reason on the log.
class LocalCopy
{
public:
    /// Looks at the disk and changes nothing there.
    LocalCopy(const QString &filePath, const QUrl &url);

    /// Deletes all three files; true if they are gone.
    static bool removeAll(const QString &filePath);

    /// True if the complete file of this very URL is there.
    bool hasFile() const { return m_state.file.has_value(); }
    const DownloadRecord &fileRecord() const { return *m_state.file; }
    /// Bytes of a part that may be resumed, or of one that is being written; 0 without one.
    qint64 partBytes() const { return m_partBytes; }
    /// True if the rest of the part may be asked for.
    bool isResumable() const;
    /// The record of the part; an empty one without a part.
    DownloadRecord partRecord() const { return m_state.part.value_or(DownloadRecord()); }
    QString partPath() const { return m_part.fileName(); }
    /// Bytes of the part, or else of the complete file.
    qint64 availableBytes() const;
    /// What availableBytes() will be at the end; 0 when that is not known.
    qint64 expectedBytes() const;

    /// A part that has all bytes is cut by the last one: the server, asked for that, says whether
    /// the rest is still right.
    [[nodiscard]] bool makeResumable();
    /// Begins a new, empty part about @p record; what an old one held is gone.
    [[nodiscard]] bool beginPart(const DownloadRecord &record);
    /// False if somebody else has changed or removed the part since it was last written.
    bool isPartUntouched() const;
    /// Opens the part that is there for append(). A part whose length was not known yet has
    /// @p totalBytes, unless that is -1.
    [[nodiscard]] bool resumePart(qint64 totalBytes);
    /// On false the part may have grown by less than @p size.
    [[nodiscard]] bool append(const char *data, qint64 size);
    [[nodiscard]] bool dropPart();
    /// The part becomes the file, dated now. While somebody holds one of them, nothing changes and
    /// it is worth another try; does not wait.
    [[nodiscard]] platform::RenameOutcome completePart();
    /// Lets go of the part, so that others may remove it.
    void closePart() { m_part.close(); }

private:
    bool openPart(QIODevice::OpenMode mode);
    bool writeState();
    bool complain(const char *what) const;

    const QString m_filePath;
    const QString m_url;
    QFile m_part;
    DownloadState m_state; ///< without what does not belong to m_url or is not on disk
    qint64 m_partBytes = 0;
    bool m_isStateOutdated = false; ///< the state file tells of what m_state no longer has
};
