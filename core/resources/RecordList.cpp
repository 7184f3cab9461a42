#include "core/resources/RecordList.h"

#include <algorithm>

#include <QDir>
#include <QJsonArray>

#include "core/foundation/FSH.h"
#include "core/foundation/JsonNumber.h"

namespace RecordList {

QString cacheFile(ResType type)
{
    return FSH::resourceDownloadDir(type) % QDir::separator() % QLatin1String("list.cache");
}

bool append(const QJsonObject &answer, const QJsonValue &records, QList<QJsonObject> &list)
{
    const QJsonValue code = answer[QLatin1String("code")];
    if (code.isUndefined() || code.isNull())
        return false;
    if (JsonNumber::isZero(code)) {
        const QJsonArray array = records.toArray();
        for (const QJsonValue &record : array) {
            if (!record.toObject().isEmpty())
                list += record.toObject();
        }
    }
    return !list.isEmpty();
}

bool take(QNetworkReply &reply, const CachedAnswer::Kind &kind, const QList<QJsonObject> &list,
          const std::function<bool(const QJsonObject &answer)> &parse)
{
    return CachedAnswer::take(reply, kind, [&](const QJsonObject &answer) {
        const int sizeBefore = list.size();
        if (!parse(answer))
            return CachedAnswer::Verdict::Refused;
        return list.size() > sizeBefore ? CachedAnswer::Verdict::Good
                                        : CachedAnswer::Verdict::NothingNew;
    });
}

QJsonObject firstOf(const QList<QJsonObject> &list,
                    const std::function<bool(const QJsonObject &record)> &matches)
{
    const auto found = std::find_if(list.begin(), list.end(), matches);
    return found == list.end() ? QJsonObject() : *found;
}

QJsonObject byId(const QList<QJsonObject> &list, uint id)
{
    return firstOf(list, [id](const QJsonObject &record) {
        return JsonNumber::toUInt(record[QLatin1String("id")]) == id;
    });
}

} // namespace RecordList
