#pragma once

#include <optional>

#include <QByteArray>
#include <QFile>
#include <QtEndian>

/// The records of a zip file as they lie in it ("APPNOTE" of the format), little endian.
namespace archivekit {

/// Reads numbers at fixed places of a record; the caller has made sure that it is long enough.
template <typename Number>
Number numberAt(const QByteArray &record, int place)
{
    return qFromLittleEndian<Number>(record.constData() + place);
}

/// @p bytes from @p offset on; nothing if the file does not have them.
[[nodiscard]] std::optional<QByteArray> readRange(QFile &file, qint64 offset, qint64 bytes);

/// Where the central directory lies.
struct DirectoryPlace
{
    qint64 offset = 0;
    qint64 bytes = 0;
    quint64 count = 0;
};

/// Looks at the end of the file; nothing if no directory is told there, or one that can not be.
[[nodiscard]] std::optional<DirectoryPlace> findDirectory(QFile &file);

/// One entry of the central directory.
struct CentralRecord
{
    quint16 madeBy = 0; ///< high byte: the system, 0 DOS, 3 Unix
    quint16 flags = 0;
    quint16 method = 0;
    qint64 packedBytes = 0;
    qint64 bytes = 0;
    quint32 attributes = 0;
    qint64 offset = 0; ///< of the local header
    QByteArray name;
};

/// The record at @p place in @p directory, and moves @p place behind it.
[[nodiscard]] std::optional<CentralRecord> takeCentralRecord(const QByteArray &directory,
                                                             int &place);

} // namespace archivekit
