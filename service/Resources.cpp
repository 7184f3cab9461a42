#include "service/Resources.h"

#include <QFileInfo>

#include "support/jsonfskit/Exception.h"

namespace {

const QString clientsFile = QStringLiteral("clients.json");
const QString clientsKey = QStringLiteral("clients");
const QString javasFile = QStringLiteral("java.json");
const QString javasKey = QStringLiteral("java");

enum Type { Java = 4, Skin = 5, Cloak = 6, Client = 101 };

/// The record as it goes out, with all that its type asks for. Throws Exception if that is not
/// there: a client would take the answer and then not know what to do with it.
QJsonObject checkedRecord(const Entry &record, int defaultType)
{
    const qint64 id = record.number(QStringLiteral("id"));
    const qint64 type = record.number(QStringLiteral("type"), defaultType);
    if (id <= 0 || id > 0xffffffffLL)
        throw Exception(QStringLiteral("%1 is no id of a resource").arg(id));
    if (!((type >= 1 && type <= 8) || type == Client))
        throw Exception(QStringLiteral("resource %1: %2 is no type").arg(id).arg(type));
    record.text(QStringLiteral("name"));
    if (type == Client)
        record.text(QStringLiteral("ver"));
    record.text(type == Skin || type == Cloak ? QStringLiteral("picOri") : QStringLiteral("url"));
    for (const char *key : {"mcver", "dependsOnList", "description", "pic"})
        record.text(QLatin1String(key), {});
    record.number(QStringLiteral("themeId"), 0);
    QJsonObject object = record.object();
    object.insert(QStringLiteral("type"), type);
    return object;
}

QJsonArray checkedRecords(const QList<Entry> &records, int type)
{
    QJsonArray checked;
    for (const Entry &record : records)
        checked.append(checkedRecord(record, type));
    return checked;
}

} // namespace

Resources::Resources(DataFolder &data) : m_data(data) {}

QList<Entry> Resources::listed(const QString &file, const QString &key)
{
    return m_data.read(file).entries(key);
}

QJsonObject Resources::clients(const Call &)
{
    return {{QStringLiteral("code"), 0},
            {QStringLiteral("game"), checkedRecords(listed(clientsFile, clientsKey), Client)}};
}

QJsonObject Resources::javas(const Call &)
{
    const QJsonArray javas = checkedRecords(listed(javasFile, javasKey), Java);
    return {{QStringLiteral("code"), 0},
            {QStringLiteral("resource"), QJsonObject{{QStringLiteral("java"), javas}}}};
}

/// A record of its own goes before one of the two lists.
QJsonObject Resources::info(const Call &call)
{
    const QString key = QStringLiteral("resource");
    const QJsonObject good{{QStringLiteral("code"), 0}};
    const auto with = [&](const QJsonObject &record) {
        QJsonObject answer = good;
        answer.insert(key, record);
        return answer;
    };
    const quint32 id = call.number(QStringLiteral("id"));
    const QString file = QStringLiteral("resources/%1.json").arg(id);
    if (QFileInfo::exists(m_data.filePath(file))) {
        const QJsonObject record = checkedRecord(m_data.read(file), 0);
        if (Entry(file, record).number(QStringLiteral("id")) != qint64(id))
            throw Exception(file % QLatin1String(" holds another id"));
        return with(record);
    }
    const auto search = [&](const QString &listFile, const QString &listKey, int type) {
        for (const Entry &record : listed(listFile, listKey)) {
            if (record.number(QStringLiteral("id")) == qint64(id))
                return checkedRecord(record, type);
        }
        return QJsonObject();
    };
    QJsonObject record = search(javasFile, javasKey, Java);
    if (record.isEmpty())
        record = search(clientsFile, clientsKey, Client);
    if (record.isEmpty())
        throw Refusal{Refusal::UnknownResource, QStringLiteral("no resource %1").arg(id)};
    return with(record);
}
