#include "support/archivekit/GzipStream.h"

namespace archivekit {

namespace {

constexpr qint64 inputBytes = 256 * 1024;
constexpr char firstMagicByte = 0x1f;
constexpr int gzipFormat = 16; ///< added to the size of the window

} // namespace

bool GzipStream::isGzip(QFile &file)
{
    return file.peek(2) == QByteArrayLiteral("\x1f\x8b");
}

GzipStream::GzipStream(QFile &file)
    : m_file(file),
      m_input(inputBytes),
      m_isReady(inflateInit2(&m_stream, gzipFormat + MAX_WBITS) == Z_OK)
{
}

GzipStream::~GzipStream()
{
    if (m_isReady)
        inflateEnd(&m_stream);
}

qint64 GzipStream::read(char *data, qint64 mostBytes)
{
    m_stream.next_out = reinterpret_cast<Bytef *>(data);
    m_stream.avail_out = static_cast<uInt>(mostBytes);
    while (m_stream.avail_out > 0) {
        if (!m_isReady || !fillInput())
            return -1;
        const bool isAtEnd = m_stream.avail_in == 0;
        if (!m_isInMember) {
            // What is no member, such as padding, may follow; other readers leave it alone too.
            if (isAtEnd || static_cast<char>(*m_stream.next_in) != firstMagicByte)
                break;
            m_isInMember = inflateReset(&m_stream) == Z_OK;
        }
        const int result = isAtEnd ? Z_DATA_ERROR : inflate(&m_stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END)
            return -1;
        m_isInMember = result != Z_STREAM_END;
    }
    return mostBytes - m_stream.avail_out;
}

/// False if the file can not be read; at its end nothing is there then.
bool GzipStream::fillInput()
{
    if (m_stream.avail_in > 0)
        return true;
    const qint64 bytes = m_file.read(m_input.data(), inputBytes);
    m_stream.next_in = reinterpret_cast<Bytef *>(m_input.data());
    m_stream.avail_in = static_cast<uInt>(qMax<qint64>(bytes, 0));
    return bytes >= 0;
}

} // namespace archivekit
