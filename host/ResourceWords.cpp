#include "host/ResourceWords.h"

#include <algorithm>

#include <QCoreApplication>

#include "host/Commands.h"
#include "host/Host.h"

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
    return type == 0 || id == 0 ? 0 : ResourceKey::pack(id, static_cast<ResType>(type));
}

int ResourceWords::complain(Host &host)
{
    host.output().error(QCoreApplication::translate("host", "see rivet --help"));
    return ExitUsage;
}

void ResourceWords::list(Host &host, const QSet<quint64> &defaults, const QSet<quint64> &ignored,
                         const QSet<quint64> &own)
{
    host.loadResources();
    QList<QStringList> rows;
    for (const quint64 key : defaults)
        rows << rowOf(host, key,
                      ignored.contains(key) ? QStringLiteral("ignored")
                                            : QStringLiteral("default"));
    for (const quint64 key : own)
        rows << rowOf(host, key, QStringLiteral("own"));
    std::sort(rows.begin(), rows.end());
    host.output().table({QStringLiteral("type"), QStringLiteral("id"), QStringLiteral("name"),
                         QStringLiteral("origin")},
                        rows);
}
