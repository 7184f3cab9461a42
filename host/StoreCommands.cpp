#include <chrono>
#include <optional>

#include <QDateTime>
#include <QDeadlineTimer>

#include "core/accounts/RivetUserProfile.h"
#include "core/store/BuyRequest.h"
#include "core/store/MyPropListInfo.h"
#include "core/store/RivetStoreListInfo.h"
#include "core/store/UsePropRequest.h"
#include "core/store/VipWelfareInfo.h"
#include "host/Commands.h"
#include "host/Host.h"
#include "host/Text.h"

namespace {

/// Waits for what the core does not tell the failure of; its requests end after 15 s.
void waitFor(const std::function<bool()> &isThere)
{
    const QDeadlineTimer patience(std::chrono::seconds(16));
    runUntil([&] { return isThere() || patience.hasExpired(); });
}

/// Starts something and waits for the value of the signal that ends it.
template <typename Object, typename Signal, typename Start>
bool outcomeOf(Object &object, Signal signal, const Start &start)
{
    std::optional<bool> outcome;
    QObject context;
    QObject::connect(&object, signal, &context, [&outcome](bool isGood) { outcome = isGood; });
    start();
    runUntil([&outcome] { return outcome.has_value(); });
    return *outcome;
}

/// The catalogue: that of the last time where the service can't be reached.
bool fetchCatalogue(Host &host)
{
    auto *list = RivetStoreListInfo::GetInstance();
    const bool isNew = outcomeOf(*list, &RivetStoreListInfo::updateStorePropListFinished,
                                 [list] { list->UpdateList(); });
    if (!isNew)
        host.output().error(list->getStorePropList().isEmpty()
                                ? Text::tr("the store can not be had")
                                : Text::tr("the store can not be reached; this is how it was"));
    return isNew;
}

/// Logs in and brings the user's money, the catalogue and the owned props.
bool openStore(Host &host)
{
    auto *profile = RivetUserProfile::GetInstance();
    bool hasMoney = false;
    QObject context;
    QObject::connect(profile, &RivetUserProfile::refreshProfile, &context,
                     [&hasMoney] { hasMoney = true; });
    const Host::LoginOutcome login = host.logInRememberedUser();
    if (login == Host::LoginOutcome::Offline)
        host.output().error(Text::tr("the service can not be reached"));
    if (login != Host::LoginOutcome::Online)
        return false;
    if (!fetchCatalogue(host))
        return false;
    auto *props = MyPropListInfo::GetInstance();
    const bool hasProps = outcomeOf(*props, &MyPropListInfo::updateMyPropListFinished,
                                    [props] { props->UpdateList(); });
    waitFor([&hasMoney] { return hasMoney; });
    if (!hasMoney || !hasProps)
        host.output().error(Text::tr("the money and props of the user can not be had"));
    return hasMoney && hasProps;
}

QString dateText(quint32 time)
{
    return time == 0 ? QString() : QDateTime::fromSecsSinceEpoch(time).toString(Qt::ISODate);
}

void tellMoney(Host &host)
{
    auto *profile = RivetUserProfile::GetInstance();
    const quint32 money = profile->GetRivetUserInfo().money;
    const quint32 level = profile->GetRealVipLevel();
    const QString line = level > 0 ? Text::tr("money %1, VIP level %2, %3 days left")
                                         .arg(money)
                                         .arg(level)
                                         .arg(profile->GetRivetUserInfo().vipDaysLeft)
                                   : Text::tr("money %1, no VIP").arg(money);
    host.output().line(
        line, {{QStringLiteral("money"), double(money)},
               {QStringLiteral("vipLevel"), double(level)},
               {QStringLiteral("vipEnd"), dateText(profile->GetRivetUserInfo().vipEndTime)}});
}

int listProps(Host &host, const QStringList &)
{
    const bool isNew = fetchCatalogue(host);
    const QList<StoreProp> props = RivetStoreListInfo::GetInstance()->getStorePropList();
    QList<QStringList> rows;
    for (const StoreProp &prop : props) {
        for (const StoreNorm &norm : prop.normList)
            rows << QStringList{QString::number(prop.id),
                                prop.name,
                                QString::number(norm.type),
                                norm.name,
                                QString::number(norm.price),
                                Text::yesOrNo(prop.onSale),
                                prop.detail};
    }
    if (!isNew && rows.isEmpty())
        return ExitFailed;
    host.output().table({Text::tr("id"), Text::tr("name"), Text::tr("form"), Text::tr("sold as"),
                         Text::tr("price"), Text::tr("on sale"), Text::tr("description")},
                        rows);
    return ExitGood;
}

int showOwnProps(Host &host, const QStringList &)
{
    if (!openStore(host))
        return ExitFailed;
    tellMoney(host);
    QList<QStringList> rows;
    for (const MyProp &prop : MyPropListInfo::GetInstance()->GetMyPropList())
        rows << QStringList{QString::number(prop.id),    prop.name,
                            QString::number(prop.count), Text::yesOrNo(prop.isUsing),
                            dateText(prop.endTime),      Text::yesOrNo(prop.isExpire)};
    host.output().table({Text::tr("id"), Text::tr("name"), Text::tr("count"), Text::tr("in use"),
                         Text::tr("ends"), Text::tr("expired")},
                        rows);
    return ExitGood;
}

/// What a purchase or a use has left of the prop, as the core knows it without asking again.
void tellProp(Host &host, quint32 id)
{
    const MyProp prop = MyPropListInfo::GetInstance()->GetMyPropById(id);
    const QString name = RivetStoreListInfo::GetInstance()->getStoreProp(id).name;
    host.output().line(Text::tr("%1: you have %2, in use: %3")
                           .arg(name, QString::number(prop.count), Text::yesOrNo(prop.isUsing)),
                       {{QStringLiteral("id"), double(id)},
                        {QStringLiteral("name"), name},
                        {QStringLiteral("count"), double(prop.count)},
                        {QStringLiteral("in use"), prop.isUsing},
                        {QStringLiteral("ends"), dateText(prop.endTime)}});
}

/// The way of selling that the user means; nothing, with a line on the output, if he has to say.
std::optional<StoreNorm> chosenNorm(Host &host, const StoreProp &prop, const QString &form)
{
    for (const StoreNorm &norm : prop.normList) {
        const bool isOnlyOne = form.isEmpty() && prop.normList.size() == 1;
        if (isOnlyOne || form == QString::number(norm.type))
            return norm;
    }
    host.output().error(
        Text::tr("the store does not sell that, or in several ways: see store list"));
    return {};
}

int buyProp(Host &host, const QStringList &arguments)
{
    if (!openStore(host))
        return ExitFailed;
    const StoreProp prop =
        RivetStoreListInfo::GetInstance()->getStoreProp(arguments.value(0).toUInt());
    const auto norm = chosenNorm(host, prop, arguments.value(1));
    if (!norm)
        return ExitFailed;
    auto *profile = RivetUserProfile::GetInstance();
    BuyRequest request;
    const bool isBought = outcomeOf(request, &BuyRequest::requestFinished, [&] {
        const auto type = static_cast<unsigned int>(norm->type);
        request.BuyProp(profile->getBid(), prop.id, type,
                        RivetStoreListInfo::GetInstance()->GetPrice(prop.id, type));
    });
    if (!isBought) {
        host.output().error(Text::tr("the store does not sell %1 to you").arg(prop.name));
        return ExitFailed;
    }
    tellMoney(host);
    if (prop.toolType != StoreProp::Membership)
        tellProp(host, prop.id);
    return ExitGood;
}

int useProp(Host &host, const QStringList &arguments)
{
    const QString wish = arguments.value(1, QStringLiteral("on"));
    const bool isOn = wish == QLatin1String("on");
    if (!isOn && wish != QLatin1String("off"))
        return Commands::wrongUsage(host.output());
    if (!openStore(host))
        return ExitFailed;
    const quint32 id = arguments.value(0).toUInt();
    UsePropRequest request;
    const bool isUsed =
        outcomeOf(request, &UsePropRequest::requestFinished, [&] { request.UseProp(id, isOn, 0); });
    if (!isUsed) {
        host.output().error(Text::tr("the prop can not be used"));
        return ExitFailed;
    }
    tellProp(host, id);
    return ExitGood;
}

QStringList welfareRow(const VipWelfare &level)
{
    QStringList items;
    for (const VipWelfareItem &item : level.welfareList)
        items << QStringLiteral("%1 x %2").arg(item.numbers).arg(item.id);
    return {QString::number(level.vipLevel), QString::number(level.discount),
            QString::number(level.room), QString::number(level.price),
            items.join(QLatin1String(", "))};
}

} // namespace

namespace Commands {

int store(Host &host, const QStringList &arguments)
{
    struct Action
    {
        const char *name;
        int fewestArguments;
        int mostArguments;
        int (*run)(Host &host, const QStringList &arguments);
    };
    static constexpr Action actions[] = {{"list", 0, 0, &listProps},
                                         {"mine", 0, 0, &showOwnProps},
                                         {"buy", 1, 2, &buyProp},
                                         {"use", 1, 2, &useProp}};
    const int count = arguments.size() - 1;
    for (const Action &action : actions) {
        if (arguments[0] == QLatin1String(action.name) && count >= action.fewestArguments &&
            count <= action.mostArguments)
            return action.run(host, arguments.mid(1));
    }
    return Commands::wrongUsage(host.output());
}

int vip(Host &host, const QStringList &)
{
    const Host::LoginOutcome login = host.logInRememberedUser();
    if (login == Host::LoginOutcome::Refused)
        return ExitFailed;
    auto *table = VipWelfareInfo::GetInstance();
    if (login == Host::LoginOutcome::Online) {
        table->UpdateList();
        waitFor([table] { return table->IsListUpdated(); });
    }
    QList<QStringList> rows;
    constexpr unsigned int highestLevel = 99;
    for (unsigned int level = 1; level <= highestLevel; ++level) {
        const VipWelfare welfare = table->GetVipWelfare(level);
        if (welfare.vipLevel == level)
            rows << welfareRow(welfare);
    }
    if (!table->IsListUpdated())
        host.output().error(rows.isEmpty()
                                ? Text::tr("the list can not be had")
                                : Text::tr("the list can not be had; this is how it was"));
    if (rows.isEmpty() && !table->IsListUpdated())
        return ExitFailed;
    host.output().table({Text::tr("level"), Text::tr("discount"), Text::tr("room"),
                         Text::tr("price"), Text::tr("welfare")},
                        rows);
    return ExitGood;
}

} // namespace Commands
