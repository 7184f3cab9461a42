#include "core/deploy/HistoryFile.h"

#include <algorithm>

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
constexpr int headBytes = 12;
constexpr int sizeAt = 0, countAt = 4, tableAt = 8;
constexpr quint32 objectType = 5;
constexpr int offsetShift = 5;
constexpr qint64 mostBytes = (1 << 27) - 1;

void setWord(QByteArray &bytes, int at, int value)
{
    qToLittleEndian(quint32(value), bytes.data() + at);
}

int wordAt(const QByteArray &bytes, int at)
{
    return int(qFromLittleEndian<quint32>(bytes.constData() + at));
}

/// The array of the @p objects, of which none is empty.
QByteArray arrayOf(const QList<QByteArray> &objects)
{
    QByteArray array(headBytes, '\0'), table(4 * objects.size(), '\0');
    int bytes = headBytes;
    for (int i = 0; i < objects.size(); ++i) {
        setWord(table, 4 * i, int(quint32(bytes) << offsetShift | objectType));
        bytes += objects.at(i).size();
    }
    array.reserve(bytes + table.size());
    for (const QByteArray &object : objects)
        array += object;
    array += table;
    setWord(array, sizeAt, array.size());
    setWord(array, countAt, int(quint32(objects.size()) << 1));
    setWord(array, tableAt, bytes);
    return array;
}

QByteArray bytesOf(const QJsonObject &object)
{
    return QJsonDocument(object).toBinaryData().mid(prefix.size());
}

/// The object of one folder: Qt makes it with an empty array, which is then exchanged.
QByteArray folderOf(const QString &path, const QList<QByteArray> &records)
{
    QByteArray folder = bytesOf({{pathKey, path}, {itemsKey, QJsonArray()}});
    if (records.isEmpty())
        return folder;
    const int end = wordAt(folder, tableAt);
    const QByteArray table = folder.mid(end);
    const QByteArray array = arrayOf(records);
    folder.truncate(end);
    folder += array;
    folder += table;
    setWord(folder, sizeAt, folder.size());
    setWord(folder, tableAt, end + array.size());
    // Members are sorted, so the array is the first one.
    const int value = wordAt(table, 0);
    const quint32 type = quint32(wordAt(folder, value)) & ((1u << offsetShift) - 1);
    setWord(folder, value, int(quint32(end) << offsetShift | type));
    return folder;
}

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
    qint64 bytes = 0;
    QList<QByteArray> folders;
    for (auto it = records.cbegin(); it != records.cend(); ++it) {
        const QList<QByteArray> inFolder = it->values();
        for (const QByteArray &record : inFolder)
            bytes += record.size();
        if (bytes > mostBytes)
            return std::nullopt;
        folders << folderOf(it.key(), inFolder);
    }
    const QByteArray root = arrayOf(folders);
    if (root.size() > mostBytes)
        return std::nullopt;
    return prefix + root;
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
