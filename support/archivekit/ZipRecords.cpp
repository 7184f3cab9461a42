#include "support/archivekit/ZipRecords.h"

#include <algorithm>
#include <utility>

namespace archivekit {

namespace {

// Signatures and lengths of the records' fixed parts.
constexpr quint32 centralSignature = 0x02014b50;
constexpr int centralBytes = 46;
constexpr int endBytes = 22;
constexpr quint32 end64Signature = 0x06064b50;
constexpr int end64Bytes = 56;
constexpr quint32 locatorSignature = 0x07064b50;
constexpr int locatorBytes = 20;

constexpr quint16 wideNumbersTag = 1;
constexpr quint32 seeWide = 0xffffffff;

// libarchive looks no further for the end record, so neither do we.
constexpr qint64 tailBytes = 16 * 1024;
// Room for 200,000 entries with long names.
constexpr qint64 mostDirectoryBytes = 128 * 1024 * 1024;

/// The record behind a locator tells what does not fit into the short end record.
std::optional<DirectoryPlace> findWideDirectory(QFile &file, qint64 endOffset)
{
    const auto locator = readRange(file, endOffset - locatorBytes, locatorBytes);
    if (!locator || numberAt<quint32>(*locator, 0) != locatorSignature)
        return std::nullopt;
    const auto end = readRange(file, numberAt<qint64>(*locator, 8), end64Bytes);
    if (!end || numberAt<quint32>(*end, 0) != end64Signature)
        return std::nullopt;
    return DirectoryPlace{numberAt<qint64>(*end, 48), numberAt<qint64>(*end, 40),
                          numberAt<quint64>(*end, 32)};
}

/// Takes the numbers that did not fit into the record out of its extra field, in their order.
bool widen(CentralRecord &record, const QByteArray &extra)
{
    for (int place = 0; place + 4 <= extra.size();) {
        const int size = numberAt<quint16>(extra, place + 2);
        const int begin = place + 4;
        if (begin + size > extra.size())
            return false;
        if (numberAt<quint16>(extra, place) == wideNumbersTag) {
            int next = begin;
            for (qint64 *number : {&record.bytes, &record.packedBytes, &record.offset}) {
                if (*number != seeWide)
                    continue;
                if (next + 8 > begin + size)
                    return false;
                *number = numberAt<qint64>(extra, next);
                next += 8;
            }
            return true;
        }
        place = begin + size;
    }
    return true;
}

} // namespace

std::optional<QByteArray> readRange(QFile &file, qint64 offset, qint64 bytes)
{
    if (offset < 0 || bytes < 0 || !file.seek(offset))
        return std::nullopt;
    QByteArray data = file.read(bytes);
    return data.size() == bytes ? std::optional<QByteArray>(std::move(data)) : std::nullopt;
}

std::optional<DirectoryPlace> findDirectory(QFile &file)
{
    const qint64 bytes = std::min<qint64>(tailBytes, file.size());
    const auto tail = readRange(file, file.size() - bytes, bytes);
    if (!tail || bytes < endBytes)
        return std::nullopt;
    const int at = tail->lastIndexOf(QByteArrayLiteral("PK\5\6"), int(bytes) - endBytes);
    // Something behind the comment could be another end, which other readers would take.
    if (at < 0 || at + endBytes + numberAt<quint16>(*tail, at + 20) != bytes)
        return std::nullopt;
    const qint64 endOffset = file.size() - bytes + at;
    DirectoryPlace place{numberAt<quint32>(*tail, at + 16), numberAt<quint32>(*tail, at + 12),
                         numberAt<quint16>(*tail, at + 10)};
    if (const auto wide = findWideDirectory(file, endOffset))
        place = *wide;
    const bool fits = place.offset >= 0 && place.bytes >= 0 && place.bytes < mostDirectoryBytes &&
                      place.offset <= endOffset - place.bytes;
    return fits ? std::optional<DirectoryPlace>(place) : std::nullopt;
}

std::optional<CentralRecord> takeCentralRecord(const QByteArray &directory, int &place)
{
    const int left = directory.size() - place;
    if (left < centralBytes || numberAt<quint32>(directory, place) != centralSignature)
        return std::nullopt;
    const int nameBytes = numberAt<quint16>(directory, place + 28);
    const int extraBytes = numberAt<quint16>(directory, place + 30);
    const int commentBytes = numberAt<quint16>(directory, place + 32);
    const int bytes = centralBytes + nameBytes + extraBytes + commentBytes;
    if (left < bytes)
        return std::nullopt;
    CentralRecord record;
    record.madeBy = numberAt<quint16>(directory, place + 4);
    record.flags = numberAt<quint16>(directory, place + 8);
    record.method = numberAt<quint16>(directory, place + 10);
    record.packedBytes = numberAt<quint32>(directory, place + 20);
    record.bytes = numberAt<quint32>(directory, place + 24);
    record.attributes = numberAt<quint32>(directory, place + 38);
    record.offset = numberAt<quint32>(directory, place + 42);
    record.name = directory.mid(place + centralBytes, nameBytes);
    if (!widen(record, directory.mid(place + centralBytes + nameBytes, extraBytes)))
        return std::nullopt;
    place += bytes;
    return record;
}

} // namespace archivekit
