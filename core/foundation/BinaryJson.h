#pragma once

#include <optional>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// Files that hold one JSON object in Qt's binary form, which is how most caches of the core lie on
/// disk. Any thread.
namespace BinaryJson {

/// The object in @p data; nothing if the bytes are not of this form.
[[nodiscard]] std::optional<QJsonObject> parse(const QByteArray &data);

/// The object in the file; nothing if it is missing or not of this form.
[[nodiscard]] std::optional<QJsonObject> readFile(const QString &path);

/// What such a file holds.
QByteArray bytesOf(const QJsonObject &object);

/// Replaces the file as a whole; false if it can't be written.
[[nodiscard]] bool writeFile(const QString &path, const QJsonObject &object);

} // namespace BinaryJson
