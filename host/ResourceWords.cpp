#include "host/ResourceWords.h"

#include <algorithm>

#include "host/Host.h"
#include "host/Text.h"

namespace {

QStringList rowOf(Host &host, quint64 key, const QString &origin)
{
    const quint32 id = ResourceKey::idOf(key);
    const quint32 type = ResourceKey::typeOf(key);
    const auto object = host.resources().knownRes(id, type);
    return {QString::number(type), QString::number(id), object ? object->name() : QString(),
            origin};
}

} // namespace

quint64 ResourceWords::keyIn(const QStringList &typeAndId)
{
    const quint32 type = typeAndId.value(0).toUInt();
    const quint32 id = typeAndId.value(1).toUInt();
    static constexpr quint32 types[] = {ResTypeMods, ResTypeSaves, ResTypeResourcePacks,
                                        ResTypeOther, ResTypeShaders};
    const bool isKnown = std::find(std::begin(types), std::end(types), type) != std::end(types);
    return !isKnown || id == 0 ? 0 : ResourceKey::pack(id, static_cast<ResType>(type));
}

void ResourceWords::list(Host &host, const QSet<quint64> &defaults, const QSet<quint64> &ignored,
                         const QSet<quint64> &own)
{
    host.loadResources();
    QList<QStringList> rows;
    for (const quint64 key : defaults)
        rows << rowOf(host, key, ignored.contains(key) ? Text::tr("ignored") : Text::tr("default"));
    for (const quint64 key : own)
        rows << rowOf(host, key, Text::tr("own"));
    std::sort(rows.begin(), rows.end());
    host.output().table({Text::tr("type"), Text::tr("id"), Text::tr("name"), Text::tr("origin")},
                        rows);
}
