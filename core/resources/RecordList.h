#pragma once

#include <functional>

#include <QJsonObject>
#include <QList>
#include <QString>

#include "core/foundation/CachedAnswer.h"
#include "core/foundation/ResourceKey.h"

class QNetworkReply;

/// What the lists of game clients and of Java runtimes share: an answer with a "code" and an array
/// of records, kept whole in the order of the service. Main thread.
namespace RecordList {

/// "list.cache" in the download directory of @p type.
QString cacheFile(ResType type);

/// Appends each non-empty object of the array @p records to @p list, if the "code" of @p answer
/// says success; false if it has none, or if @p list is empty then.
bool append(const QJsonObject &answer, const QJsonValue &records, QList<QJsonObject> &list);

/// CachedAnswer::take() for such a list. Only an answer that has brought something is kept on disk.
bool take(QNetworkReply &reply, const CachedAnswer::Kind &kind, const QList<QJsonObject> &list,
          const std::function<bool(const QJsonObject &answer)> &parse);

/// The first record that @p matches; an empty object if there is none.
QJsonObject firstOf(const QList<QJsonObject> &list,
                    const std::function<bool(const QJsonObject &record)> &matches);

/// The record whose "id", a number or a decimal string, is @p id.
QJsonObject byId(const QList<QJsonObject> &list, uint id);

} // namespace RecordList
