#pragma once

#include <functional>
#include <optional>

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

class FilePersistent;
class QNetworkReply;

/// What the classes of the store share when they read its answers. Main thread.
namespace StoreAnswer {

/// The elements of a list that the service or a cache file tells; nothing, with a line on the log,
/// if the service refused it. Throws Exception, which names @p what, if there is no list.
[[nodiscard]] std::optional<QJsonArray> listIn(const QByteArray &data, const QString &what);

/// Gives the body of a finished reply to @p parse, which is that of @p list, and keeps a good one
/// in the cache file of the list. Otherwise loads the list from there, so that the last good answer
/// counts again. True for a good answer.
bool takeInto(FilePersistent &list, QNetworkReply &reply,
              const std::function<bool(const QByteArray &)> &parse);

/// Runs @p apply if the service granted the purchase or the use. False, with a line on the log, if
/// it did not, or if @p apply finds a value wrong.
bool takeGranted(const QJsonObject &answer, const std::function<void()> &apply);

} // namespace StoreAnswer
