#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

class Host;

/// What the commands for the resources of an instance and of a map share.
namespace ResourceWords {

/// The operation that @p action names; null if it names none.
template <typename Change>
Change choose(const QString &action, Change add, Change remove, Change ignore, Change unignore)
{
    if (action == QLatin1String("add"))
        return add;
    if (action == QLatin1String("remove"))
        return remove;
    if (action == QLatin1String("ignore"))
        return ignore;
    return action == QLatin1String("unignore") ? unignore : nullptr;
}

/// The key of the resource that TYPE and ID name; 0 if they do not.
quint64 keyIn(const QStringList &typeAndId);

/// Shows a table of resource keys, with the names of those that lie on disk.
void list(Host &host, const QSet<quint64> &defaults, const QSet<quint64> &ignored,
          const QSet<quint64> &own);

} // namespace ResourceWords
