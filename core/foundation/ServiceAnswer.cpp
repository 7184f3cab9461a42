#include "core/foundation/ServiceAnswer.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <QStringBuilder>

#include "core/foundation/CachedAnswer.h"
#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace ServiceAnswer {

std::optional<QByteArray> bodyOf(QNetworkReply &reply)
{
    if (reply.error() == QNetworkReply::NoError)
        return CachedAnswer::filteredBody(reply);
    Log::warning(QLatin1String("request store list info failed, error code:") %
                 QString::number(reply.error()));
    return std::nullopt;
}

std::optional<QJsonObject> objectOf(QNetworkReply &reply)
{
    const std::optional<QByteArray> body = bodyOf(reply);
    return body ? std::optional<QJsonObject>(QJsonDocument::fromJson(*body).object())
                : std::nullopt;
}

int number(const QJsonObject &json, const char *key)
{
    return Json::requireString(json, key).toInt();
}

quint32 time(const QJsonObject &json, const char *key)
{
    return Json::requireString(json, key).toUInt();
}

int code(const QJsonObject &json)
{
    const QString name = QStringLiteral("code");
    return Json::requireInteger(json[name], name);
}

void forEachObject(const QJsonArray &elements, const QString &what,
                   const std::function<void(const QJsonObject &)> &read)
{
    for (const QJsonValue &element : elements) {
        const QJsonObject object = Json::requireObject(element, what);
        if (!object.isEmpty())
            read(object);
    }
}

bool read(const FailureLines &lines, const std::function<bool()> &reader)
{
    try {
        return reader();
    } catch (const Exception &exception) {
        Log::warning(lines.wrongValue % exception.cause());
    } catch (...) {
        Log::warning(lines.anythingElse);
    }
    return false;
}

} // namespace ServiceAnswer
