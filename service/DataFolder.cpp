#include "service/DataFolder.h"

#include <cmath>
#include <utility>

#include <QFileInfo>

#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Json.h"

namespace {

/// Above it a number of JSON is not exact.
constexpr double largest = 9007199254740992.0;

} // namespace

Entry::Entry(QString where, QJsonObject object)
    : m_where(std::move(where)), m_object(std::move(object))
{
}

QString Entry::place(const QString &key) const
{
    return m_where % QLatin1String(": \"") % key % QLatin1Char('"');
}

QString Entry::text(const QString &key) const
{
    const QString value = Json::requireString(m_object.value(key), place(key));
    if (value.isEmpty())
        throw Exception(place(key) % QLatin1String(" is empty"));
    return value;
}

QString Entry::text(const QString &key, const QString &defaultValue) const
{
    return has(key) ? Json::requireString(m_object.value(key), place(key)) : defaultValue;
}

qint64 Entry::number(const QString &key) const
{
    const QJsonValue value = m_object.value(key);
    if (value.isString()) {
        bool isNumber = false;
        const qint64 number = value.toString().toLongLong(&isNumber);
        if (isNumber)
            return number;
    }
    const double number = value.toDouble(0.5);
    if (std::floor(number) != number || std::fabs(number) > largest)
        throw Exception(place(key) % QLatin1String(" is no whole number"));
    return qint64(number);
}

qint64 Entry::number(const QString &key, qint64 defaultValue) const
{
    return has(key) ? number(key) : defaultValue;
}

QString Entry::numberText(const QString &key) const
{
    return QString::number(number(key));
}

double Entry::fraction(const QString &key, double defaultValue) const
{
    if (has(key) && !m_object.value(key).isDouble())
        throw Exception(place(key) % QLatin1String(" is no number"));
    return m_object.value(key).toDouble(defaultValue);
}

bool Entry::flag(const QString &key, bool defaultValue) const
{
    if (has(key) && !m_object.value(key).isBool())
        throw Exception(place(key) % QLatin1String(" is neither true nor false"));
    return m_object.value(key).toBool(defaultValue);
}

Entry Entry::entry(const QString &key) const
{
    if (!has(key))
        return {place(key), {}};
    return {place(key), Json::requireObject(m_object.value(key), place(key))};
}

QList<Entry> Entry::entries(const QString &key) const
{
    QList<Entry> entries;
    if (!has(key))
        return entries;
    for (const QJsonValue &value : Json::requireArray(m_object.value(key), place(key))) {
        const QString where = QStringLiteral("%1: %2[%3]").arg(m_where, key).arg(entries.size());
        entries.append(Entry(where, Json::requireObject(value, where)));
    }
    return entries;
}

DataFolder::DataFolder(QString path) : m_path(std::move(path)) {}

void DataFolder::setPlaceholder(const QByteArray &name, const QByteArray &value)
{
    const std::lock_guard lock(m_mutex);
    m_placeholders.insert('{' + name + '}', value);
}

QString DataFolder::filePath(const QString &name) const
{
    return m_path % QLatin1Char('/') % name;
}

Entry DataFolder::read(const QString &name)
{
    if (!QFileInfo::exists(filePath(name)))
        return {name, {}};
    std::optional<QByteArray> text = FS::readFile(filePath(name));
    if (!text)
        throw Exception(name % QLatin1String(" can not be read"));
    const std::lock_guard lock(m_mutex);
    for (auto it = m_placeholders.cbegin(); it != m_placeholders.cend(); ++it)
        text->replace(it.key(), it.value());
    return {name, Json::requireObject(Json::requireDocument(*text, name), name)};
}
