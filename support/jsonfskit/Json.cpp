#include "support/jsonfskit/Json.h"

#include <cmath>
#include <limits>
#include <optional>

#include "support/jsonfskit/Exception.h"

namespace Json {

namespace {

[[noreturn]] void fail(const QString &what, const QString &problem)
{
    throw Exception(what % QLatin1String(": ") % problem);
}

std::optional<int> wholeNumber(const QJsonValue &value)
{
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    // Not a number compares false, so it takes the way out.
    if (!(number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()))
        return std::nullopt;
    return std::trunc(number) == number ? std::optional<int>(static_cast<int>(number))
                                        : std::nullopt;
}

} // namespace

QJsonDocument requireDocument(const QByteArray &data, const QString &what)
{
    QJsonParseError error{};
    QJsonDocument document = QJsonDocument::fromJson(data, &error);
    if (error.error != QJsonParseError::NoError) {
        fail(what, QLatin1String("no valid JSON, ") % error.errorString() %
                       QLatin1String(" at byte ") % QString::number(error.offset));
    }
    return document;
}

QJsonObject requireObject(const QJsonDocument &document, const QString &what)
{
    if (!document.isObject())
        fail(what, QStringLiteral("the document holds no object"));
    return document.object();
}

QJsonObject requireObject(const QJsonValue &value, const QString &what)
{
    if (!value.isObject())
        fail(what, QStringLiteral("the value is no object"));
    return value.toObject();
}

QJsonArray requireArray(const QJsonValue &value, const QString &what)
{
    if (!value.isArray())
        fail(what, QStringLiteral("the value is no array"));
    return value.toArray();
}

QString requireString(const QJsonValue &value, const QString &what)
{
    if (!value.isString())
        fail(what, QStringLiteral("the value is no string"));
    return value.toString();
}

QString requireString(const QJsonObject &object, const char *key)
{
    const QString name = QLatin1String(key);
    return requireString(object[name], name);
}

int requireInteger(const QJsonValue &value, const QString &what)
{
    const std::optional<int> number = wholeNumber(value);
    if (!number)
        fail(what, QStringLiteral("the value is no whole number"));
    return *number;
}

QString ensureString(const QJsonValue &value, QString defaultValue, const QString &)
{
    return value.toString(defaultValue);
}

int ensureInteger(const QJsonValue &value, int defaultValue, const QString &)
{
    return wholeNumber(value).value_or(defaultValue);
}

} // namespace Json
