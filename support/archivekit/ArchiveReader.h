#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include <QFile>
#include <QString>

#include <archive.h>
#include <archive_entry.h>

#include "support/archivekit/ExtractionPlan.h"
#include "support/archivekit/GzipStream.h"

namespace archivekit {

enum class ReaderFormat {
    Zip, ///< by the directory at its end; the entries come in the order of their place in the file
    SevenZipOrTar,
};

enum class ReadStep {
    Next,   ///< there is an entry, or a piece of content
    End,    ///< behind the last one
    Failed, ///< failure() tells why
};

/// Reads an archive from a file, one entry after another. What libarchive only warns of counts as
/// a failure: a hostile archive is not given the benefit of the doubt.
///
/// Belongs to one thread, which reads names as UTF-8 (platform::Utf8Names).
class ArchiveReader
{
public:
    /// As soon as @p stop is set, reading fails. It must outlive the reader.
    ArchiveReader(QString archivePath, ReaderFormat format, const std::atomic<bool> &stop);

    /// Starts at the first entry, also when the reader was further on already.
    [[nodiscard]] bool open();

    [[nodiscard]] ReadStep nextEntry();
    EntryHeader header() const;

    /// A piece of the content of the entry. The bytes are valid until the next call.
    struct Piece
    {
        const char *data = nullptr;
        qint64 bytes = 0;
        qint64 offset = 0; ///< in the unpacked content
    };
    [[nodiscard]] ReadStep nextPiece(Piece &piece);

    QString failure() const { return m_failure; }
    /// How much of the archive's own bytes is used up; from 0 to 1.
    double share() const;

private:
    static la_ssize_t onRead(archive *, void *self, const void **buffer);
    static la_int64_t onSeek(archive *, void *self, la_int64_t offset, int whence);
    static la_int64_t onSkip(archive *, void *self, la_int64_t bytes);
    bool fail();
    ReadStep stepOf(int result);
    qint64 readFile();
    bool isRestGood();

    struct Closer
    {
        void operator()(archive *handle) const { archive_read_free(handle); }
    };
    QFile m_file;
    ReaderFormat m_format;
    const std::atomic<bool> &m_stop;
    std::vector<char> m_buffer;
    qint64 m_bytesAtOnce; ///< grows while the file is read in a row
    archive_entry *m_entry = nullptr;
    QString m_failure;
    std::unique_ptr<GzipStream> m_gzip;         ///< where the file is packed by gzip
    std::unique_ptr<archive, Closer> m_archive; ///< calls back until its end: goes first
};

} // namespace archivekit
