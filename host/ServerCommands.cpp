#include <algorithm>

#include <QFuture>
#include <QThreadPool>
#include <QtConcurrent>

#include "core/config/OMRC.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/servers/GetServerPlayerInfo.h"
#include "core/servers/MaskWordHelper.h"
#include "core/servers/OnlineSrvInfoReq.h"
#include "core/servers/TipsHelper.h"
#include "host/Commands.h"
#include "host/Host.h"
#include "host/ResourceWords.h"
#include "host/Text.h"

namespace {

constexpr int pingThreads = 32;
constexpr unsigned int pingWaitMs = 2000;
constexpr quint16 defaultPort = 25565;

/// One server that is asked for its players.
struct Ping
{
    QString name;
    QString host;
    quint16 port = defaultPort;
    bool hasAnswered = false;
    QMap<QString, QVariant> answer = {};

    int lag() const { return hasAnswered ? answer.value(QStringLiteral("lag")).toInt() : 9; }
    QString players() const
    {
        if (answer.value(QStringLiteral("code"), 2).toInt() != 0)
            return {};
        return answer[QStringLiteral("online")].toString() % QLatin1Char('/') %
               answer[QStringLiteral("max")].toString();
    }
    QString lagText() const
    {
        const QString words[] = {Text::tr("up to 150 ms"), Text::tr("up to 300 ms"),
                                 Text::tr("slow")};
        return hasAnswered && lag() >= 1 && lag() <= 3 ? words[lag() - 1] : Text::tr("no answer");
    }
};

/// Asks all at once and sorts them, the quickest first.
void askAll(QList<Ping> &pings)
{
    QThreadPool pool;
    pool.setMaxThreadCount(pingThreads);
    QList<QFuture<Ping>> futures;
    for (const Ping &ping : qAsConst(pings)) {
        futures << QtConcurrent::run(&pool, [asked = ping]() mutable {
            asked.hasAnswered = GetServerPlayerInfo().requestPlayerInfo(asked.answer, asked.host,
                                                                        asked.port, pingWaitMs);
            return asked;
        });
    }
    pings.clear();
    for (const QFuture<Ping> &future : qAsConst(futures))
        pings << future.result();
    std::stable_sort(pings.begin(), pings.end(),
                     [](const Ping &a, const Ping &b) { return a.lag() < b.lag(); });
}

void show(Host &host, const QList<Ping> &pings)
{
    QList<QStringList> rows;
    for (const Ping &ping : pings)
        rows << QStringList{ping.name, ping.host % QLatin1Char(':') % QString::number(ping.port),
                            ping.players(), ping.lagText()};
    host.output().table(
        {Text::tr("name"), Text::tr("address"), Text::tr("players"), Text::tr("lag")}, rows);
}

using Change = void (OnlineMapResConfig::*)(const QString &, const QSet<quint64> &, bool);

Change changeNamed(const QString &action)
{
    return ResourceWords::choose<Change>(action, &OnlineMapResConfig::setCustomMapResConfig,
                                         &OnlineMapResConfig::unSetCustomMapResConfig,
                                         &OnlineMapResConfig::setIgnoredRemoteMapCfg,
                                         &OnlineMapResConfig::unSetIgnoredRemoteMapCfg);
}

void listMap(Host &host, const QString &map)
{
    const auto *config = OnlineMapResConfig::GetInstance();
    ResourceWords::list(
        host, config->getRemoteDefaultMapCfgList(map) + config->GetSrvDefaultResConfig(map),
        config->getIgnoredRemoteDefaultMapCfgList(map), config->getCustomMapCfgList(map));
}

} // namespace

namespace Commands {

int servers(Host &host, const QStringList &)
{
    OnlineSrvInfoReq request;
    runUntilSignal(request, &OnlineSrvInfoReq::requestFinished,
                   [&request] { request.startRequest(); });
    QList<Ping> pings;
    for (const tagOnlineSrvInfo &server : request.getOnlineSrvInfoList())
        pings << Ping{server.name, server.addresses.first().host, server.addresses.first().port};
    if (!request.isUpdated() && pings.isEmpty())
        host.output().error(Text::tr("the list can not be had"));
    askAll(pings);
    show(host, pings);
    return request.isUpdated() || !pings.isEmpty() ? ExitGood : ExitFailed;
}

int ping(Host &host, const QStringList &arguments)
{
    QList<Ping> pings;
    for (const QString &address : arguments) {
        const QStringList parts = address.split(QLatin1Char(':'));
        const quint16 port = parts.size() == 1 ? defaultPort : parts[1].toUShort();
        if (parts.size() > 2 || parts[0].isEmpty() || port == 0)
            return Commands::wrongUsage(host.output());
        pings << Ping{{}, parts[0], port};
    }
    askAll(pings);
    show(host, pings);
    const bool hasAny = std::any_of(pings.begin(), pings.end(),
                                    [](const Ping &asked) { return asked.hasAnswered; });
    return hasAny ? ExitGood : ExitFailed;
}

int maps(Host &host, const QStringList &arguments)
{
    const QString action = arguments.value(1, QStringLiteral("list"));
    if (action == QLatin1String("list")) {
        listMap(host, arguments[0]);
        return ExitGood;
    }
    const Change change = changeNamed(action);
    const quint64 key = ResourceWords::keyIn(arguments.mid(2));
    if (!change || key == 0)
        return Commands::wrongUsage(host.output());
    (OnlineMapResConfig::GetInstance()->*change)(arguments[0], {key}, true);
    return ExitGood;
}

int mask(Host &host, const QStringList &arguments)
{
    const QString masked = MaskWordHelper::GetInstance()->stringMask(arguments[0]);
    host.output().line(masked, {{QStringLiteral("text"), masked}});
    return ExitGood;
}

int tip(Host &host, const QStringList &)
{
    const QString text = TipsHelper::GetInstance()->getRandTips();
    host.output().line(text, {{QStringLiteral("text"), text}});
    return ExitGood;
}

} // namespace Commands
