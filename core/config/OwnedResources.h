#pragma once

#include <functional>

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>

#include "core/foundation/ResourceKey.h"
#include "support/jsonfskit/Log.h"

/// One relation of a resource configuration: owners, such as game instances or maps, and the keys
/// of the resources that belong to each. Not thread-safe.
template <typename Owner>
class OwnedResources
{
public:
    using Keys = QSet<quint64>;

    Keys keysOf(const Owner &owner) const { return m_table.value(owner); }

    QSet<Owner> ownersOf(quint64 key) const
    {
        QSet<Owner> owners;
        for (auto entry = m_table.begin(); entry != m_table.end(); ++entry) {
            if (entry->contains(key))
                owners += entry.key();
        }
        return owners;
    }

    /// The owner gets an entry even if there is nothing to add.
    void add(const Owner &owner, const Keys &keys) { m_table[owner] += keys; }

    /// An owner that loses its last key goes.
    void remove(const Owner &owner, const Keys &keys)
    {
        const auto entry = m_table.find(owner);
        if (entry == m_table.end())
            return;
        *entry -= keys;
        if (entry->isEmpty())
            m_table.erase(entry);
    }

    void replace(const Owner &owner, const Keys &keys) { m_table[owner] = keys; }

    /// Takes every key but @p keys from an owner that stands in the table.
    void keepOnly(const Owner &owner, const Keys &keys)
    {
        const auto entry = m_table.find(owner);
        if (entry != m_table.end())
            *entry &= keys;
    }

    /// The owner stays, with no keys.
    void clear(const Owner &owner) { keepOnly(owner, {}); }
    void clearAll() { m_table.clear(); }

    /// Owners stay, also with no keys.
    void removeEverywhere(quint64 key)
    {
        for (Keys &keys : m_table)
            keys.remove(key);
    }

    /// An array of objects with the owner under @p ownerName and the keys, as decimal strings,
    /// under "resList".
    QJsonArray toJson(const QString &ownerName,
                      const std::function<QString(const Owner &)> &text) const
    {
        QJsonArray array;
        for (auto entry = m_table.begin(); entry != m_table.end(); ++entry) {
            QJsonArray list;
            for (const quint64 key : *entry)
                list += QJsonObject{{QStringLiteral("resId"), QString::number(key)}};
            array += QJsonObject{{ownerName, text(entry.key())}, {QStringLiteral("resList"), list}};
        }
        return array;
    }

    /// Reads what toJson() gives. Entries whose text is no owner and keys of 0 are skipped, each
    /// with a line on the log; so is an entry without keys, with @p emptyLine if there is one.
    void fromJson(const QJsonArray &array, const QString &ownerName,
                  const std::function<Owner(const QString &)> &ownerIn, const QString &emptyLine)
    {
        for (const QJsonValue &entry : array) {
            const Owner owner = ownerIn(entry[ownerName].toString());
            if (owner == Owner()) {
                Log::warning(QStringLiteral("read failed and continue !"));
                continue;
            }
            const Keys keys = keysIn(entry[QStringLiteral("resList")].toArray());
            if (!keys.isEmpty())
                m_table[owner] = keys;
            else if (!emptyLine.isEmpty())
                Log::warning(emptyLine);
        }
    }

private:
    static Keys keysIn(const QJsonArray &list)
    {
        Keys keys;
        for (const QJsonValue &element : list) {
            const quint64 key = element[QStringLiteral("resId")].toString().toULongLong();
            if (key == 0)
                Log::warning(QStringLiteral("read failed and continue !"));
            else
                keys += key;
        }
        return keys;
    }

    QHash<Owner, Keys> m_table;
};

namespace OwnedResourceLists {

/// @p keys without the key 0, for which @p line goes to the log.
inline QSet<quint64> validKeys(QSet<quint64> keys, const QString &line)
{
    if (keys.remove(0))
        Log::critical(line);
    return keys;
}

/// The ids of the keys of @p type.
inline QList<uint> idsOfType(const QSet<quint64> &keys, ResType type)
{
    QList<uint> ids;
    for (const quint64 key : keys) {
        if (ResourceKey::typeOf(key) == type)
            ids += ResourceKey::idOf(key);
    }
    return ids;
}

/// @p list without the first occurrence of each of @p removed.
template <typename T, typename Removed>
QList<T> without(QList<T> list, const Removed &removed)
{
    for (const T &element : removed)
        list.removeOne(element);
    return list;
}

} // namespace OwnedResourceLists
