#include "service/GameServers.h"

#include <QJsonDocument>

#include "support/jsonfskit/Exception.h"

namespace {

/// "line1": "host:port" and so on; an empty value stands for no address.
QJsonObject checkedAddresses(const Entry &addresses)
{
    for (const QString &key : addresses.object().keys()) {
        const QString text = addresses.text(key, {});
        const QStringList parts = text.split(QLatin1Char(':'));
        const bool isAddress = parts.size() == 2 && !parts[0].isEmpty() && parts[1].toUShort() != 0;
        if (!text.isEmpty() && !isAddress)
            throw Exception(QStringLiteral("servers.json: \"%1\" is no host:port").arg(text));
    }
    return addresses.object();
}

} // namespace

GameServers::GameServers(DataFolder &data) : m_data(data) {}

/// The list stands in parentheses, so there are none inside of it.
Answer GameServers::instances(const Call &call)
{
    const quint32 bid = call.number(QStringLiteral("bid"));
    QJsonArray mine;
    const Entry file = m_data.read(QStringLiteral("instances.json"));
    for (const Entry &instance : file.entries(QStringLiteral("instances"))) {
        if (instance.number(QStringLiteral("owner"), bid) != qint64(bid))
            continue;
        QJsonObject object = instance.object();
        object.insert(QStringLiteral("id"), instance.numberText(QStringLiteral("id")));
        object.insert(QStringLiteral("name"), instance.text(QStringLiteral("name")));
        object.insert(QStringLiteral("ver"), instance.text(QStringLiteral("ver")));
        mine.append(object);
    }
    Answer answer = Answer::json({{QStringLiteral("code"), 0}, {QStringLiteral("data"), mine}});
    answer.body.replace('(', "\\u0028").replace(')', "\\u0029");
    answer.body = '(' + answer.body + ')';
    return answer;
}

QJsonObject GameServers::publicServers(const Call &)
{
    QJsonArray servers;
    const Entry file = m_data.read(QStringLiteral("servers.json"));
    for (const Entry &server : file.entries(QStringLiteral("servers"))) {
        QJsonObject object = server.object();
        object.insert(QStringLiteral("id"), server.numberText(QStringLiteral("id")));
        object.insert(QStringLiteral("status"),
                      QString::number(server.number(QStringLiteral("status"), 0)));
        object.insert(QStringLiteral("name"), server.text(QStringLiteral("name")));
        object.insert(QStringLiteral("ver"), server.text(QStringLiteral("ver")));
        object.insert(QStringLiteral("mods"), server.text(QStringLiteral("mods"), {}));
        object.insert(QStringLiteral("address"),
                      checkedAddresses(server.entry(QStringLiteral("address"))));
        servers.append(object);
    }
    return {{QStringLiteral("code"), 0}, {QStringLiteral("server"), servers}};
}

QJsonObject GameServers::settings(const Call &)
{
    const Entry file = m_data.read(QStringLiteral("settings.json"));
    QJsonArray buttons;
    for (const Entry &button : file.entries(QStringLiteral("buttons"))) {
        QJsonObject object{{QStringLiteral("name"), button.text(QStringLiteral("name"))}};
        for (const char *key : {"link", "text", "id", "type", "btnType", "status"})
            object.insert(QLatin1String(key), button.text(QLatin1String(key), {}));
        buttons.append(object);
    }
    QJsonArray contacts;
    for (const Entry &contact : file.entries(QStringLiteral("contacts")))
        contacts.append(
            QJsonObject{{QStringLiteral("name"), contact.text(QStringLiteral("name"))},
                        {QStringLiteral("url"), contact.text(QStringLiteral("url"))},
                        {QStringLiteral("sort"), contact.number(QStringLiteral("sort"), 0)}});
    return {{QStringLiteral("btn"), buttons}, {QStringLiteral("kefu"), contacts}};
}

QByteArray GameServers::status()
{
    const Entry status = m_data.read(QStringLiteral("game.json")).entry(QStringLiteral("status"));
    const Entry players = status.entry(QStringLiteral("players"));
    QJsonObject object = status.object();
    object.insert(
        QStringLiteral("players"),
        QJsonObject{{QStringLiteral("max"), players.number(QStringLiteral("max"), 20)},
                    {QStringLiteral("online"), players.number(QStringLiteral("online"), 0)}});
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}
