#pragma once

#include <vector>

#include <QFile>

#include <zlib.h>

namespace archivekit {

/// The unpacked content of a gzip file, of all its members one after another. Unlike libarchive's
/// own filter it compares each member's checksum and length.
class GzipStream
{
public:
    /// True if @p file, which is at its beginning and stays there, begins like a gzip file.
    static bool isGzip(QFile &file);

    /// Reads @p file from where it stands; it must outlive this object.
    explicit GzipStream(QFile &file);
    ~GzipStream();
    GzipStream(const GzipStream &) = delete;
    GzipStream &operator=(const GzipStream &) = delete;

    /// As QIODevice::read(): the number of bytes, 0 at the end, -1 when the file is damaged, cut
    /// off, or can not be read.
    qint64 read(char *data, qint64 mostBytes);

private:
    bool fillInput();

    QFile &m_file;
    std::vector<char> m_input;
    z_stream m_stream{};
    bool m_isReady;
    bool m_isInMember = true;
};

} // namespace archivekit
