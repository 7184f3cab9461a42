#pragma once

#include <optional>

#include <QJsonObject>
#include <QString>

class Host;

/// The instance that the user names on the command line, by id or by name.
struct InstanceChoice
{
    quint32 id = 0;
    QJsonObject description; ///< as the service sent it

    /// Looks through the last list; if @p word is not there, logs in and asks for a new one.
    /// Nothing, with a line on the output, if there is no such instance.
    static std::optional<InstanceChoice> find(Host &host, const QString &word);

    /// The same without asking the service.
    static std::optional<InstanceChoice> known(const QString &word);
};
