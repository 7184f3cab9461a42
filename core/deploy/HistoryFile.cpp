#include "core/deploy/HistoryFile.h"

#include <numeric>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QtEndian>

#include "core/deploy/DeployedFile.h"
#include "support/jsonfskit/Log.h"

// The form is deprecated in favour of CBOR, but files of it lie on the disks of our users.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace HistoryFile {

namespace {

constexpr int mostFilesRead = 100;

const QString pathKey = QStringLiteral("deployPath");
const QString itemsKey = QStringLiteral("deployItems");
const QString resourceKey = QStringLiteral("resKey");
const QString timeKey = QStringLiteral("deployTime");
const QString filesKey = QStringLiteral("deployFiles");

// Qt's binary form: "qbjs", the version, then the root. An object or array begins with its size,
// its number of members (bit 0 tells an object) and the offset of its table, which comes last:
// 32-bit little-endian words, all offsets from its own start. So it may be copied as it is into
// another one. The word of a value has its type in the low 3 bits and its offset in the high 27.
const QByteArray prefix = QByteArrayLiteral("qbjs\1\0\0\0");
constexpr int wordBytes = 4;
constexpr int headBytes = 3 * wordBytes;
constexpr int sizeAt = 0, tableAt = 2 * wordBytes;
constexpr quint32 objectType = 5;
constexpr int offsetShift = 5;
constexpr qint64 mostBytes = (1 << 27) - 1;

int wordAt(const QByteArray &bytes, int at)
{
    return int(qFromLittleEndian<quint32>(bytes.constData() + at));
}

void setWord(QByteArray &bytes, int at, int value)
{
    qToLittleEndian(quint32(value), bytes.data() + at);
}

void addWord(QByteArray &bytes, int value)
{
    const quint32 word = qToLittleEndian(quint32(value));
    bytes.append(reinterpret_cast<const char *>(&word), sizeof word);
}

int sizeOfArray(const QList<QByteArray> &objects)
{
    return std::accumulate(
        objects.begin(), objects.end(), headBytes,
        [](int sum, const QByteArray &object) { return sum + object.size() + wordBytes; });
}

/// Appends the beginning of the array, whose objects and table are to follow.
void addArrayHead(QByteArray &bytes, int count, int size)
{
    addWord(bytes, size);
    addWord(bytes, int(quint32(count) << 1));
    addWord(bytes, size - count * wordBytes);
}

/// Appends the table of the array that begins at @p start, for objects that end where the next one
/// begins and have their size in front.
void addArrayTable(QByteArray &bytes, int start, int count)
{
    for (int i = 0, at = headBytes; i < count; ++i) {
        addWord(bytes, int(quint32(at) << offsetShift | objectType));
        at += wordAt(bytes, start + at + sizeAt);
    }
}

QByteArray bytesOf(const QJsonObject &object)
{
    return QJsonDocument(object).toBinaryData().mid(prefix.size());
}

/// One folder of the file: what Qt makes of it with an empty array, and what goes into the array.
struct Folder
{
    QByteArray frame;
    QList<QByteArray> records;

    int size() const { return frame.size() + (records.isEmpty() ? 0 : sizeOfArray(records)); }

    void addTo(QByteArray &bytes) const
    {
        const int start = bytes.size(), count = records.size();
        bytes += frame;
        if (records.isEmpty())
            return;
        const int end = wordAt(frame, tableAt), arrayStart = start + end;
        const QByteArray table = frame.mid(end);
        bytes.truncate(arrayStart);
        addArrayHead(bytes, count, sizeOfArray(records));
        for (const QByteArray &record : records)
            bytes += record;
        addArrayTable(bytes, arrayStart, count);
        setWord(bytes, start + tableAt, bytes.size() - start);
        bytes += table;
        setWord(bytes, start + sizeAt, bytes.size() - start);
        // Members are sorted, so the array is the first one.
        const int value = start + wordAt(table, 0);
        const quint32 type = quint32(wordAt(bytes, value)) & ((1u << offsetShift) - 1);
        setWord(bytes, value, int(quint32(end) << offsetShift | type));
    }
};

bool canHold(const QString &name)
{
    return !name.contains(QLatin1Char(':')) && !name.contains(QLatin1Char('|')) &&
           name.trimmed().size() == name.size();
}

/// Qt writes this form in the language of the system, but reads it only in some.
QDateTime timeOf(const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, Qt::TextDate);
    return time.isValid()
               ? time
               : QLocale::system().toDateTime(text, QStringLiteral("ddd MMM d HH:mm:ss yyyy"));
}

/// Nothing if the text is damaged or one of the files is gone.
std::optional<QHash<QString, QString>> filesOf(const QString &text, const QString &folder)
{
    const QStringList entries = text.trimmed().split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QHash<QString, QString> files;
    for (const QString &entry : entries.mid(0, mostFilesRead)) {
        const QStringList parts = entry.trimmed().split(QLatin1Char(':'), Qt::SkipEmptyParts);
        if (parts.size() != 2 || !DeployedFile::isBelow(parts.at(0))) {
            Log::warning(QStringLiteral("deploy record parse failed."));
            return std::nullopt;
        }
        if (!QFileInfo::exists(folder % QLatin1Char('/') % parts.at(0)))
            return std::nullopt;
        files.insert(parts.at(0), parts.at(1));
    }
    return files.isEmpty() ? std::nullopt : std::optional(files);
}

QHash<quint64, DeployRecordItem> recordsOf(const QJsonArray &items, const QString &folder)
{
    QHash<quint64, DeployRecordItem> records;
    for (const QJsonValue &value : items) {
        const QJsonObject object = value.toObject();
        const quint64 key = object.value(resourceKey).toString().toULongLong();
        if (key == 0)
            continue;
        const auto files = filesOf(object.value(filesKey).toString(), folder);
        if (files)
            records.insert(key, {timeOf(object.value(timeKey).toString()), *files});
    }
    return records;
}

} // namespace

QByteArray buildRecord(quint64 resKey, const DeployRecordItem &item)
{
    QString files;
    for (auto it = item.deployFiles.cbegin(); it != item.deployFiles.cend(); ++it) {
        if (!canHold(it.key()))
            return {};
        if (!it.key().isEmpty())
            files += it.key() % QLatin1Char(':') % it.value() % QLatin1Char('|');
    }
    return bytesOf({{resourceKey, QString::number(resKey)},
                    {timeKey, item.deployTime.toString(Qt::TextDate)},
                    {filesKey, files}});
}

std::optional<QByteArray> build(const TableOf<QByteArray> &records)
{
    QVector<Folder> folders;
    qint64 size = headBytes;
    for (auto it = records.cbegin(); it != records.cend(); ++it) {
        folders.append({bytesOf({{pathKey, it.key()}, {itemsKey, QJsonArray()}}), it->values()});
        size += folders.last().size() + wordBytes;
        if (size > mostBytes)
            return std::nullopt;
    }
    QByteArray bytes;
    bytes.reserve(prefix.size() + int(size));
    bytes += prefix;
    addArrayHead(bytes, folders.size(), int(size));
    for (const Folder &folder : qAsConst(folders))
        folder.addTo(bytes);
    addArrayTable(bytes, prefix.size(), folders.size());
    return bytes;
}

TableOf<DeployRecordItem> parse(const QByteArray &data)
{
    TableOf<DeployRecordItem> table;
    const QJsonArray folders = QJsonDocument::fromBinaryData(data).array();
    for (const QJsonValue &value : folders) {
        const QJsonObject object = value.toObject();
        const QString path = object.value(pathKey).toString();
        const QJsonArray items = object.value(itemsKey).toArray();
        if (!path.isEmpty() && QDir().exists(path) && !items.isEmpty())
            table.insert(QDir::cleanPath(path), recordsOf(items, path));
    }
    return table;
}

} // namespace HistoryFile
