#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include "core/foundation/ResourceKey.h"

class ResInfo;

/// The JSON form of a record, which the service and the .inf files share. Any thread.
namespace ResInfoJson {

/// Empty for a record without an id or a type.
QJsonObject write(const ResInfo &info);

/// Which resource @p object describes; the parts that it does not tell are 0.
quint64 keyIn(const QJsonObject &object);

/// Takes the fields from @p object in a fixed order; false, with the fields read so far changed,
/// at the first that makes it no usable record.
bool read(const QJsonObject &object, ResInfo &info);

/// The text of a list of dependencies: section words such as "mods", each in force for the ids
/// behind it, and ids, all followed by ";". Bare ids in front have the type of the record itself.
QString writeDepends(ResType ownType, const QList<quint64> &keys);

/// Appends the keys that @p text names to @p out.
void readDepends(ResType ownType, const QString &text, QList<quint64> &out);

} // namespace ResInfoJson
