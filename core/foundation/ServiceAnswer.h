#pragma once

#include <functional>
#include <optional>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

class QNetworkReply;

/// Reads the answers of the user-info, store and VIP services: JSON objects with a whole number as
/// "code" and with most other numbers as decimal texts. Main thread.
namespace ServiceAnswer {

/// The body of a finished reply, prepared for parsing; nothing, with a line on the log, after a
/// network error.
[[nodiscard]] std::optional<QByteArray> bodyOf(QNetworkReply &reply);

/// The same as an object, which is empty if the body is none.
[[nodiscard]] std::optional<QJsonObject> objectOf(QNetworkReply &reply);

/// @name Numbers that are written as texts; throw Exception, which names @p key, for other values.
/// @{
int number(const QJsonObject &json, const char *key);
/// Seconds since the epoch, also those after 2038.
quint32 time(const QJsonObject &json, const char *key);
/// @}

/// Throws Exception unless "code" is a whole number.
int code(const QJsonObject &json);

/// Gives each element that is not empty to @p read; throws Exception at one that is no object.
void forEachObject(const QJsonArray &elements, const QString &what,
                   const std::function<void(const QJsonObject &)> &read);

/// The log lines of a reader that was stopped.
struct FailureLines
{
    QLatin1String wrongValue; ///< the cause follows
    QLatin1String anythingElse;
};

/// What @p reader returns; false, with a line on the log, when it throws.
bool read(const FailureLines &lines, const std::function<bool()> &reader);

} // namespace ServiceAnswer
