#include "support/transferservice/DownloadRecord.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Json.h"

namespace {

struct TextField
{
    QLatin1String key;
    QByteArray &(*of)(DownloadRecord &);
};

const TextField textFields[] = {
    {QLatin1String("etag"), [](DownloadRecord &r) -> QByteArray & { return r.etag; }},
    {QLatin1String("lastModified"),
     [](DownloadRecord &r) -> QByteArray & { return r.lastModified; }},
    {QLatin1String("rangeValidator"),
     [](DownloadRecord &r) -> QByteArray & { return r.rangeValidator; }},
    {QLatin1String("digestAlgorithm"),
     [](DownloadRecord &r) -> QByteArray & { return r.digest.algorithm; }},
    {QLatin1String("digest"), [](DownloadRecord &r) -> QByteArray & { return r.digest.base64; }},
};

const QLatin1String urlKey("url");
const QLatin1String totalKey("totalBytes");
const QLatin1String fileKey("file");
const QLatin1String partKey("part");

// The length is a decimal string: a JSON number goes through a double.
QJsonObject toJson(DownloadRecord record)
{
    QJsonObject object{{urlKey, record.url}, {totalKey, QString::number(record.totalBytes)}};
    for (const TextField &field : textFields)
        object.insert(field.key, QString::fromLatin1(field.of(record)));
    return object;
}

std::optional<DownloadRecord> fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    const QJsonObject object = value.toObject();
    DownloadRecord record;
    bool isNumber = false;
    record.url = object.value(urlKey).toString();
    record.totalBytes = object.value(totalKey).toString().toLongLong(&isNumber);
    for (const TextField &field : textFields)
        field.of(record) = object.value(field.key).toString().toLatin1();
    return isNumber && !record.url.isEmpty() ? std::make_optional(record) : std::nullopt;
}

} // namespace

DownloadState readDownloadState(const QString &path)
{
    const std::optional<QByteArray> data = FS::readFile(path);
    if (!data)
        return {};
    try {
        const QJsonObject object = Json::requireObject(Json::requireDocument(*data, path), path);
        return {fromJson(object.value(fileKey)), fromJson(object.value(partKey))};
    } catch (const Exception &) {
        return {};
    }
}

bool writeDownloadState(const QString &path, const DownloadState &state)
{
    QJsonObject object;
    if (state.file)
        object.insert(fileKey, toJson(*state.file));
    if (state.part)
        object.insert(partKey, toJson(*state.part));
    return FS::writeFile(path, QJsonDocument(object).toJson());
}
