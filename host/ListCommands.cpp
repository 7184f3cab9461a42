#include <algorithm>

#include "core/config/GameResConfig.h"
#include "core/resources/GameClientListInfo.h"
#include "core/resources/JavaListInfo.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "host/Commands.h"
#include "host/Host.h"
#include "host/InstanceChoice.h"
#include "host/ResourceWords.h"
#include "host/Text.h"

namespace {

/// Fetches a list and waits for it; false, with a line on the output, if there is none.
template <typename List>
bool fetch(Host &host, List &list)
{
    if (!list.isListUpdated())
        runUntilSignal(list, &List::updateListFinished, [&list] { list.updateList(); });
    if (!list.isListUpdated())
        host.output().error(Text::tr("the list can not be had"));
    return list.isListUpdated();
}

QStringList rowOf(const QJsonObject &record)
{
    QStringList row;
    for (const char *key : {"id", "name", "ver", "description"})
        row << record[QLatin1String(key)].toVariant().toString();
    return row;
}

QStringList recordHead()
{
    return {Text::tr("id"), Text::tr("name"), Text::tr("ver"), Text::tr("description")};
}

template <typename List, typename Records>
int showList(Host &host, List &list, Records records)
{
    if (!fetch(host, list))
        return ExitFailed;
    QList<QStringList> rows;
    for (const QJsonObject &record : (list.*records)())
        rows << rowOf(record);
    host.output().table(recordHead(), rows);
    return ExitGood;
}

using Change = void (GameResConfig::*)(unsigned int, const QSet<quint64> &, bool);

Change changeNamed(const QString &action)
{
    return ResourceWords::choose<Change>(
        action, &GameResConfig::setGameInstanceConfig, &GameResConfig::unSetGameInstanceConfig,
        &GameResConfig::setIgnoredRemoteGameInstCfg, &GameResConfig::unSetIgnoredRemoteGameInstCfg);
}

} // namespace

namespace Commands {

int clients(Host &host, const QStringList &)
{
    return showList(host, *GameClientListInfo::GetInstance(), &GameClientListInfo::gameClients);
}

int java(Host &host, const QStringList &)
{
    return showList(host, *JavaListInfo::GetInstance(), &JavaListInfo::javas);
}

int instances(Host &host, const QStringList &)
{
    if (host.logInRememberedUser() == Host::LoginOutcome::Refused)
        return ExitFailed;
    host.updateInstances();
    auto *list = MyMcGameInstMgr::GetInstance();
    auto ids = list->getGameInstIdList();
    std::sort(ids.begin(), ids.end());
    QList<QStringList> rows;
    for (const unsigned int id : qAsConst(ids))
        rows << rowOf(list->getGameInstanceInfo(id));
    host.output().table(recordHead(), rows);
    return ExitGood;
}

int resources(Host &host, const QStringList &arguments)
{
    const auto instance = InstanceChoice::find(host, arguments[0]);
    if (!instance)
        return ExitFailed;
    const auto *config = GameResConfig::GetInstance();
    const QString action = arguments.value(1, QStringLiteral("list"));
    if (action == QLatin1String("list")) {
        ResourceWords::list(host, config->getRemoteDefaultGameInstCfgList(instance->id),
                            config->getIgnoredRemoteDefaultGameInstCfgList(instance->id),
                            config->getCustomGameInstCfgList(instance->id));
        return ExitGood;
    }
    const Change change = changeNamed(action);
    const quint64 key = ResourceWords::keyIn(arguments.mid(2));
    if (!change || key == 0)
        return Commands::wrongUsage(host.output());
    (GameResConfig::GetInstance()->*change)(instance->id, {key}, true);
    return ExitGood;
}

} // namespace Commands
