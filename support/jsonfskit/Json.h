#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include "support/jsonfskit/JsonFsKitExport.h"

/// Strict reading of JSON. Each "require" function throws Exception, whose cause names @p what,
/// when the value is not of the wanted type; each "ensure" function falls back to a default.
/// Any thread.
namespace Json {

/// Parses JSON text in UTF-8.
JSONFSKIT_EXPORT QJsonDocument requireDocument(const QByteArray &data, const QString &what);

JSONFSKIT_EXPORT QJsonObject requireObject(const QJsonDocument &document, const QString &what);
JSONFSKIT_EXPORT QJsonObject requireObject(const QJsonValue &value, const QString &what);
JSONFSKIT_EXPORT QJsonArray requireArray(const QJsonValue &value, const QString &what);
JSONFSKIT_EXPORT QString requireString(const QJsonValue &value, const QString &what);
/// The member @p key, in Latin-1, which is also what the cause names.
JSONFSKIT_EXPORT QString requireString(const QJsonObject &object, const char *key);

/// A whole number in the range of int; 3.0 is one, 3.5 and "3" are none.
JSONFSKIT_EXPORT int requireInteger(const QJsonValue &value, const QString &what);

JSONFSKIT_EXPORT QString ensureString(const QJsonValue &value, QString defaultValue,
                                      const QString &what);
JSONFSKIT_EXPORT int ensureInteger(const QJsonValue &value, int defaultValue, const QString &what);

} // namespace Json
