#include "support/archivekit/ArchiveReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace archivekit {

namespace {

constexpr qint64 mostBytesAtOnce = 256 * 1024;
// Behind a jump there is often but a header to be read before the next jump.
constexpr qint64 bytesAfterJump = 8 * 1024;

/// The formats that are read; every other one is refused.
bool supportFormats(archive *handle, ReaderFormat format)
{
    if (format == ReaderFormat::Zip)
        return archive_read_support_format_zip_seekable(handle) == ARCHIVE_OK;
    // Without the option, names of plain tar would be bytes of an unknown charset.
    return archive_read_support_format_7zip(handle) == ARCHIVE_OK &&
           archive_read_support_format_tar(handle) == ARCHIVE_OK &&
           archive_read_set_format_option(handle, "tar", "hdrcharset", "UTF-8") == ARCHIVE_OK &&
           archive_read_support_filter_xz(handle) == ARCHIVE_OK &&
           archive_read_support_filter_zstd(handle) == ARCHIVE_OK;
}

EntryType typeOf(archive_entry *entry)
{
    if (archive_entry_hardlink_w(entry) || archive_entry_symlink_w(entry))
        return EntryType::Other;
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return EntryType::File;
    case AE_IFDIR:
        return EntryType::Folder;
    default:
        return EntryType::Other;
    }
}

} // namespace

ArchiveReader::ArchiveReader(QString archivePath, ReaderFormat format,
                             const std::atomic<bool> &stop)
    : m_file(archivePath),
      m_format(format),
      m_stop(stop),
      m_buffer(mostBytesAtOnce),
      m_bytesAtOnce(bytesAfterJump)
{
}

bool ArchiveReader::open()
{
    m_archive.reset(archive_read_new());
    if (!m_archive || !supportFormats(m_archive.get(), m_format))
        return fail();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        m_failure = m_file.errorString();
        return false;
    }
    if (!m_file.seek(0))
        return fail();
    archive *handle = m_archive.get();
    archive_read_set_callback_data(handle, this);
    archive_read_set_read_callback(handle, &ArchiveReader::onRead);
    if (m_format == ReaderFormat::SevenZipOrTar && GzipStream::isGzip(m_file)) {
        m_gzip = std::make_unique<GzipStream>(m_file);
    } else {
        archive_read_set_seek_callback(handle, &ArchiveReader::onSeek);
        archive_read_set_skip_callback(handle, &ArchiveReader::onSkip);
    }
    return archive_read_open1(handle) == ARCHIVE_OK || fail();
}

ReadStep ArchiveReader::nextEntry()
{
    const ReadStep step = stepOf(archive_read_next_header(m_archive.get(), &m_entry));
    return step == ReadStep::End && !isRestGood() ? ReadStep::Failed : step;
}

/// The last checksum stands behind what the archive's last entry makes libarchive read.
bool ArchiveReader::isRestGood()
{
    qint64 bytes = m_gzip ? 1 : 0;
    while (bytes > 0 && !m_stop)
        bytes = m_gzip->read(m_buffer.data(), mostBytesAtOnce);
    if (bytes < 0)
        m_failure = QStringLiteral("the archive is damaged");
    return bytes == 0;
}

EntryHeader ArchiveReader::header() const
{
    EntryHeader header;
    const wchar_t *name = archive_entry_pathname_w(m_entry);
    header.name = name ? QString::fromWCharArray(name) : QString();
    header.type = typeOf(m_entry);
    if (archive_entry_size_is_set(m_entry))
        header.bytes = archive_entry_size(m_entry);
    header.executable = (archive_entry_perm(m_entry) & 0111) != 0;
    header.encrypted = archive_entry_is_encrypted(m_entry) != 0;
    return header;
}

ReadStep ArchiveReader::nextPiece(Piece &piece)
{
    const void *data = nullptr;
    size_t bytes = 0;
    la_int64_t offset = 0;
    const ReadStep step = stepOf(archive_read_data_block(m_archive.get(), &data, &bytes, &offset));
    piece = {static_cast<const char *>(data), static_cast<qint64>(bytes), offset};
    return step;
}

double ArchiveReader::share() const
{
    const auto used =
        static_cast<double>(m_gzip ? m_file.pos() : archive_filter_bytes(m_archive.get(), -1));
    return std::clamp(used / static_cast<double>(std::max<qint64>(m_file.size(), 1)), 0.0, 1.0);
}

ReadStep ArchiveReader::stepOf(int result)
{
    if (result == ARCHIVE_OK)
        return ReadStep::Next;
    if (result == ARCHIVE_EOF) {
        m_failure = QStringLiteral("the archive ends early");
        return ReadStep::End;
    }
    fail();
    return ReadStep::Failed;
}

bool ArchiveReader::fail()
{
    const char *text = m_archive ? archive_error_string(m_archive.get()) : nullptr;
    m_failure = text ? QString::fromUtf8(text) : QStringLiteral("the archive can not be read");
    return false;
}

la_ssize_t ArchiveReader::onRead(archive *handle, void *self, const void **buffer)
{
    auto *reader = static_cast<ArchiveReader *>(self);
    if (reader->m_stop) {
        archive_set_error(handle, EIO, "stopped");
        return ARCHIVE_FATAL;
    }
    *buffer = reader->m_buffer.data();
    const qint64 bytes = reader->readFile();
    if (bytes < 0)
        archive_set_error(handle, EIO, "the file is damaged or can not be read");
    return static_cast<la_ssize_t>(bytes < 0 ? ARCHIVE_FATAL : bytes);
}

qint64 ArchiveReader::readFile()
{
    const qint64 bytes = m_gzip ? m_gzip->read(m_buffer.data(), m_bytesAtOnce)
                                : m_file.read(m_buffer.data(), m_bytesAtOnce);
    m_bytesAtOnce = std::min(2 * m_bytesAtOnce, mostBytesAtOnce);
    return bytes;
}

la_int64_t ArchiveReader::onSeek(archive *, void *self, la_int64_t offset, int whence)
{
    static_cast<ArchiveReader *>(self)->m_bytesAtOnce = bytesAfterJump;
    QFile &file = static_cast<ArchiveReader *>(self)->m_file;
    const qint64 base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.pos() : file.size();
    return base + offset >= 0 && file.seek(base + offset) ? file.pos() : ARCHIVE_FATAL;
}

/// Never skips to behind the end, where a cut file would go unseen.
la_int64_t ArchiveReader::onSkip(archive *, void *self, la_int64_t bytes)
{
    static_cast<ArchiveReader *>(self)->m_bytesAtOnce = bytesAfterJump;
    QFile &file = static_cast<ArchiveReader *>(self)->m_file;
    const qint64 here = file.pos();
    const qint64 there = here + std::min<qint64>(bytes, file.size() - here);
    return there > here && file.seek(there) ? there - here : 0;
}

} // namespace archivekit
