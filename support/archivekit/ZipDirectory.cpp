#include "support/archivekit/ZipDirectory.h"

#include <algorithm>

#include "support/archivekit/EntryNames.h"
#include "support/archivekit/ExtractionPlan.h"

namespace archivekit {

namespace {

constexpr quint32 localSignature = 0x04034b50;
constexpr int localBytes = 30;

constexpr quint16 encryptedFlag = 1 << 0;
constexpr quint16 utf8Flag = 1 << 11;
constexpr quint16 hiddenHeaderFlag = 1 << 13;
constexpr quint16 strongEncryptionMethod = 99;

constexpr int unixSystem = 3;
constexpr int darwinSystem = 19;
// Bits of a Unix file mode.
constexpr quint32 kindBits = 0170000;
constexpr quint32 fileKind = 0100000;
constexpr quint32 folderKind = 0040000;
constexpr quint32 executeBits = 0111;

/// 0 where the system that made the archive has no such thing.
quint32 unixModeOf(const CentralRecord &record)
{
    const int system = record.madeBy >> 8;
    return system == unixSystem || system == darwinSystem ? record.attributes >> 16 : 0;
}

/// The slash at the end of its name makes a folder; a mode that says otherwise is a lie.
EntryType typeOf(const CentralRecord &record)
{
    const bool isFolder = record.name.endsWith('/');
    const quint32 kind = unixModeOf(record) & kindBits;
    if (kind != 0 && kind != (isFolder ? folderKind : fileKind))
        return EntryType::Other;
    return isFolder ? EntryType::Folder : EntryType::File;
}

} // namespace

bool ZipDirectory::isZip(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray begin = file.read(4);
    return begin == QByteArrayLiteral("PK\3\4") || begin == QByteArrayLiteral("PK\5\6");
}

bool ZipDirectory::read(const QString &path)
{
    m_file.setFileName(path);
    // Each header is one short read; a buffer would fetch what lies behind it as well.
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return fail("the file can not be opened");
    const auto place = findDirectory(m_file);
    if (!place)
        return fail("the directory of the archive is missing or damaged");
    return readRecords(*place) && checkPlaces(place->offset) &&
           std::all_of(m_records.begin(), m_records.end(),
                       [this](const CentralRecord &record) { return addEntry(record); });
}

bool ZipDirectory::readRecords(const DirectoryPlace &place)
{
    const auto directory = readRange(m_file, place.offset, place.bytes);
    if (!directory)
        return fail("the directory of the archive can not be read");
    for (int at = 0; at < directory->size();) {
        const auto record = takeCentralRecord(*directory, at);
        if (!record)
            return fail("the directory of the archive is damaged");
        if (static_cast<int>(m_records.size()) >= mostEntries)
            return fail("the archive has too many entries");
        if (m_stop)
            return fail("stopped");
        m_records.push_back(*record);
    }
    if (m_records.size() != place.count)
        return fail("the directory of the archive lies about the number of entries");
    std::stable_sort(
        m_records.begin(), m_records.end(),
        [](const CentralRecord &a, const CentralRecord &b) { return a.offset < b.offset; });
    return true;
}

bool ZipDirectory::checkPlaces(qint64 directoryOffset)
{
    qint64 free = 0;
    for (const CentralRecord &record : m_records) {
        if (m_stop)
            return fail("stopped");
        if (record.offset < free || record.packedBytes < 0 || record.bytes < 0)
            return fail(record, "the entry overlaps with another one");
        const auto local = readRange(m_file, record.offset, localBytes + record.name.size());
        if (!local || numberAt<quint32>(*local, 0) != localSignature)
            return fail(record, "the entry is not where the directory says");
        const bool isSame = numberAt<quint16>(*local, 26) == record.name.size() &&
                            local->mid(localBytes) == record.name &&
                            numberAt<quint16>(*local, 8) == record.method &&
                            !((numberAt<quint16>(*local, 6) ^ record.flags) & encryptedFlag);
        if (!isSame)
            return fail(record, "the entry's own header differs from the directory");
        const qint64 begin = record.offset + local->size() + numberAt<quint16>(*local, 28);
        if (record.packedBytes > directoryOffset - begin)
            return fail(record, "the entry is cut off");
        free = begin + record.packedBytes;
    }
    return true;
}

bool ZipDirectory::addEntry(const CentralRecord &record)
{
    const NameCharset charset = record.flags & utf8Flag ? NameCharset::Utf8 : NameCharset::Unknown;
    const auto name = decodeName(record.name, charset);
    if (m_stop)
        return fail("stopped");
    if (!name)
        return fail(record, "the name is no UTF-8, though the archive says so");
    EntryHeader entry;
    entry.name = *name;
    entry.type = typeOf(record);
    entry.bytes = record.bytes;
    entry.executable = (unixModeOf(record) & executeBits) != 0;
    entry.encrypted = (record.flags & (encryptedFlag | hiddenHeaderFlag)) != 0 ||
                      record.method == strongEncryptionMethod;
    m_entries.push_back(entry);
    return true;
}

bool ZipDirectory::fail(const CentralRecord &record, const char *why)
{
    m_failedEntry = decodeName(record.name, NameCharset::Unknown).value_or(QString());
    return fail(why);
}

bool ZipDirectory::fail(const char *why)
{
    m_failure = QString::fromLatin1(why);
    return false;
}

} // namespace archivekit
