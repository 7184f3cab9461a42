#include "core/foundation/BinaryJson.h"

#include <QJsonDocument>

#include "support/jsonfskit/FS.h"

// The form is deprecated in favour of CBOR, but files of it lie on the disks of our users.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace BinaryJson {

std::optional<QJsonObject> parse(const QByteArray &data)
{
    const QJsonDocument document = QJsonDocument::fromBinaryData(data);
    return document.isObject() ? std::optional<QJsonObject>(document.object()) : std::nullopt;
}

std::optional<QJsonObject> readFile(const QString &path)
{
    return parse(FS::readFile(path).value_or(QByteArray()));
}

QByteArray bytesOf(const QJsonObject &object)
{
    return QJsonDocument(object).toBinaryData();
}

bool writeFile(const QString &path, const QJsonObject &object)
{
    return FS::writeFile(path, bytesOf(object));
}

} // namespace BinaryJson
