#include <QCoreApplication>
#include <QNetworkReply>

#include "core/config/GRC.h"
#include "core/config/GameResConfig.h"
#include "core/resources/GameClientListInfo.h"
#include "core/resources/JavaListInfo.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "host/Commands.h"
#include "host/Host.h"
#include "host/InstanceChoice.h"

namespace {

/// Fetches a list and waits for it; false, with a line on the output, if there is none.
template <typename List>
bool fetch(Host &host, List &list)
{
    bool isDone = list.isListUpdated();
    QObject context;
    QObject::connect(&list, &List::updateListFinished, &context, [&isDone] { isDone = true; });
    list.updateList();
    runUntil([&isDone] { return isDone; });
    if (!list.isListUpdated())
        host.output().error(QCoreApplication::translate("host", "the list can not be had"));
    return list.isListUpdated();
}

QStringList rowOf(const QJsonObject &record)
{
    QStringList row;
    for (const char *key : {"id", "name", "ver", "description"})
        row << record[QLatin1String(key)].toVariant().toString();
    return row;
}

const QStringList recordHead{QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("ver"),
                             QStringLiteral("description")};

QStringList resourceRow(quint32 type, uint id, const char *origin, Host &host)
{
    const auto object = host.resources().knownRes(id, type);
    return {QString::number(type), QString::number(id), object ? object->name() : QString(),
            QString::fromLatin1(origin)};
}

void listResources(Host &host, quint32 instance)
{
    host.loadResources();
    const auto *config = GameResConfig::GetInstance();
    const QSet<quint64> ignored = config->getIgnoredRemoteDefaultGameInstCfgList(instance);
    QList<QStringList> rows;
    for (const quint64 key : config->getRemoteDefaultGameInstCfgList(instance))
        rows << resourceRow(ResourceKey::typeOf(key), ResourceKey::idOf(key),
                            ignored.contains(key) ? "ignored" : "default", host);
    for (const quint64 key : config->getCustomGameInstCfgList(instance))
        rows << resourceRow(ResourceKey::typeOf(key), ResourceKey::idOf(key), "own", host);
    std::sort(rows.begin(), rows.end());
    host.output().table({QStringLiteral("type"), QStringLiteral("id"), QStringLiteral("name"),
                         QStringLiteral("origin")},
                        rows);
}

using Change = void (GameResConfig::*)(unsigned int, const QSet<quint64> &, bool);

Change changeNamed(const QString &name)
{
    if (name == QLatin1String("add"))
        return &GameResConfig::setGameInstanceConfig;
    if (name == QLatin1String("remove"))
        return &GameResConfig::unSetGameInstanceConfig;
    if (name == QLatin1String("ignore"))
        return &GameResConfig::setIgnoredRemoteGameInstCfg;
    return name == QLatin1String("unignore") ? &GameResConfig::unSetIgnoredRemoteGameInstCfg
                                             : nullptr;
}

} // namespace

namespace Commands {

int clients(Host &host, const QStringList &)
{
    auto *list = GameClientListInfo::GetInstance();
    if (!fetch(host, *list))
        return ExitFailed;
    QList<QStringList> rows;
    for (const QJsonObject &client : list->gameClients())
        rows << rowOf(client);
    host.output().table(recordHead, rows);
    return ExitGood;
}

int java(Host &host, const QStringList &)
{
    auto *list = JavaListInfo::GetInstance();
    if (!fetch(host, *list))
        return ExitFailed;
    QList<QStringList> rows;
    for (const QJsonObject &runtime : list->javas())
        rows << rowOf(runtime);
    host.output().table(recordHead, rows);
    return ExitGood;
}

int instances(Host &host, const QStringList &)
{
    if (host.logInRememberedUser() == Host::LoginOutcome::Refused)
        return ExitFailed;
    host.updateInstances();
    auto *list = MyMcGameInstMgr::GetInstance();
    QList<QStringList> rows;
    for (const unsigned int id : list->getGameInstIdList())
        rows << rowOf(list->getGameInstanceInfo(id));
    host.output().table(recordHead, rows);
    return ExitGood;
}

int resources(Host &host, const QStringList &arguments)
{
    const auto instance = InstanceChoice::find(host, arguments[0]);
    if (!instance)
        return ExitFailed;
    const QString action = arguments.value(1, QStringLiteral("list"));
    if (action == QLatin1String("list")) {
        listResources(host, instance->id);
        return ExitGood;
    }
    const Change change = changeNamed(action);
    const quint64 key =
        ResourceKey::pack(arguments.value(3).toUInt(), ResType(arguments.value(2).toUInt()));
    if (!change || ResourceKey::idOf(key) == 0 || ResourceKey::typeOf(key) == 0) {
        host.output().error(QCoreApplication::translate("host", "see rivet --help"));
        return ExitUsage;
    }
    (GameResConfig::GetInstance()->*change)(instance->id, {key}, true);
    return ExitGood;
}

} // namespace Commands
