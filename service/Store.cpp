#include "service/Store.h"

#include <optional>

#include "service/Signature.h"
#include "service/Vip.h"

namespace {

const QString storeFile = QStringLiteral("store.json");

enum ToolType { Switched = 1, Consumable = 2, OtherConsumable = 3, Membership = 4 };

qint64 toolTypeOf(const Entry &prop)
{
    return prop.number(QStringLiteral("toolType"));
}

/// Texts of an entry under the same keys; optional ones may be missing.
void copyTexts(const Entry &from, QJsonObject &to, std::initializer_list<const char *> required,
               std::initializer_list<const char *> optional)
{
    for (const char *key : required)
        to.insert(QLatin1String(key), from.text(QLatin1String(key)));
    for (const char *key : optional)
        to.insert(QLatin1String(key), from.text(QLatin1String(key), {}));
}

QJsonObject normAnswer(const Entry &norm)
{
    QJsonObject answer{{QStringLiteral("type"), norm.numberText(QStringLiteral("type"))},
                       {QStringLiteral("price"), norm.numberText(QStringLiteral("price"))}};
    copyTexts(norm, answer, {"name"}, {"describe"});
    return answer;
}

QJsonObject propAnswer(const Entry &prop)
{
    QJsonArray norms;
    for (const Entry &norm : prop.entries(QStringLiteral("norms")))
        norms.append(normAnswer(norm));
    const bool isSoldOut = prop.flag(QStringLiteral("soldOut"), false);
    QJsonObject answer{{QStringLiteral("id"), prop.numberText(QStringLiteral("id"))},
                       {QStringLiteral("toolType"), QString::number(toolTypeOf(prop))},
                       {QStringLiteral("soldOut"), QString::number(int(isSoldOut))},
                       {QStringLiteral("normList"), norms}};
    copyTexts(prop, answer, {"name"}, {"picture", "resUrl", "detail"});
    if (toolTypeOf(prop) == Membership)
        answer.insert(QStringLiteral("vipLevel"), prop.number(QStringLiteral("vipLevel")));
    return answer;
}

/// The props that an account owns, as its object holds them.
class OwnedProps
{
public:
    explicit OwnedProps(const Entry &account) : m_props(account.entries(QStringLiteral("props"))) {}

    std::optional<Entry> find(quint32 id) const
    {
        for (const Entry &prop : m_props) {
            if (prop.number(QStringLiteral("id")) == qint64(id))
                return prop;
        }
        return {};
    }
    /// Replaces the one with that id, or adds one.
    void put(quint32 id, qint64 count, qint64 endTime, bool isUsing)
    {
        const Entry prop(QStringLiteral("prop"), {{QStringLiteral("id"), qint64(id)},
                                                  {QStringLiteral("count"), count},
                                                  {QStringLiteral("endTime"), endTime},
                                                  {QStringLiteral("using"), isUsing}});
        for (Entry &known : m_props) {
            if (known.number(QStringLiteral("id")) == qint64(id)) {
                known = prop;
                return;
            }
        }
        m_props.append(prop);
    }
    void remove(quint32 id)
    {
        for (int i = m_props.size() - 1; i >= 0; --i) {
            if (m_props.at(i).number(QStringLiteral("id")) == qint64(id))
                m_props.removeAt(i);
        }
    }
    QJsonArray toJson() const
    {
        QJsonArray array;
        for (const Entry &prop : m_props)
            array.append(prop.object());
        return array;
    }
    const QList<Entry> &all() const { return m_props; }

private:
    QList<Entry> m_props;
};

bool isOver(qint64 endTime)
{
    return endTime != 0 && endTime <= QDateTime::currentSecsSinceEpoch();
}

/// The end of validity after @p days more.
qint64 prolonged(qint64 endTime, qint64 days)
{
    return qMax(endTime, QDateTime::currentSecsSinceEpoch()) + days * Vip::daySeconds;
}

/// Of the props that are switched on and off, at most one is on. No other kind is ever on.
void switchProp(OwnedProps &owned, quint32 id, bool isOn)
{
    const QList<Entry> all = owned.all();
    for (const Entry &prop : all) {
        const auto other = quint32(prop.number(QStringLiteral("id")));
        const bool wasOn = prop.flag(QStringLiteral("using"), false);
        owned.put(other, prop.number(QStringLiteral("count")),
                  prop.number(QStringLiteral("endTime"), 0), other == id ? isOn : wasOn && !isOn);
    }
}

Entry normOf(const Entry &prop, quint32 type)
{
    for (const Entry &norm : prop.entries(QStringLiteral("norms"))) {
        if (norm.number(QStringLiteral("type")) == qint64(type))
            return norm;
    }
    throw Refusal{Refusal::UnknownProp, QStringLiteral("the prop is not sold that way")};
}

void pay(QJsonObject &account, const Entry &before, qint64 price)
{
    const qint64 money = before.number(QStringLiteral("money"), 0);
    if (money < price)
        throw Refusal{Refusal::NotEnoughMoney, QStringLiteral("not enough money")};
    account.insert(QStringLiteral("money"), money - price);
}

/// Gives what was bought to the account; the end of its validity, 0 for none.
qint64 hand(QJsonObject &account, const Entry &before, const Entry &prop, const Entry &norm,
            qint64 &count)
{
    const qint64 days = norm.number(QStringLiteral("days"), 0);
    if (toolTypeOf(prop) == Membership) {
        const qint64 level = prop.number(QStringLiteral("vipLevel"));
        const bool isSame = before.number(QStringLiteral("vipLevel"), 1) == level;
        const qint64 end =
            prolonged(isSame ? before.number(QStringLiteral("vipEndTime"), 0) : 0, days);
        account.insert(QStringLiteral("vipLevel"), level);
        account.insert(QStringLiteral("vipEndTime"), end);
        count = 1;
        return end;
    }
    const auto id = quint32(prop.number(QStringLiteral("id")));
    OwnedProps owned(before);
    const Entry known = owned.find(id).value_or(Entry(QStringLiteral("prop"), {}));
    const bool isSwitched = toolTypeOf(prop) == Switched;
    const qint64 had = known.number(QStringLiteral("count"), 0);
    count = isSwitched ? 1 : had + norm.number(QStringLiteral("count"), 1);
    const qint64 end = isSwitched ? prolonged(known.number(QStringLiteral("endTime"), 0), days) : 0;
    owned.put(id, count, end, known.flag(QStringLiteral("using"), false));
    account.insert(QStringLiteral("props"), owned.toJson());
    return end;
}

} // namespace

Store::Store(DataFolder &data, AccountStore &accounts) : m_data(data), m_accounts(accounts) {}

Entry Store::prop(quint32 id)
{
    for (const Entry &prop : m_data.read(storeFile).entries(QStringLiteral("props"))) {
        if (prop.number(QStringLiteral("id")) == qint64(id))
            return prop;
    }
    throw Refusal{Refusal::UnknownProp, QStringLiteral("no prop %1").arg(id)};
}

QJsonObject Store::props(const Call &call)
{
    const qint64 page = qMax(1u, call.number(QStringLiteral("page")));
    const qint64 size = call.number(QStringLiteral("size"));
    const QList<Entry> all = m_data.read(storeFile).entries(QStringLiteral("props"));
    QJsonArray props;
    for (qint64 i = (page - 1) * size; i < qMin<qint64>(page * size, all.size()); ++i)
        props.append(propAnswer(all.at(int(i))));
    return {{QStringLiteral("code"), 0}, {QStringLiteral("data"), props}};
}

QJsonObject Store::buy(const Call &call)
{
    Signature::check(call);
    const Entry wanted = prop(call.number(QStringLiteral("prop")));
    if (wanted.flag(QStringLiteral("soldOut"), false))
        throw Refusal{Refusal::UnknownProp, QStringLiteral("the prop is sold out")};
    const Entry norm = normOf(wanted, call.number(QStringLiteral("norm")));
    const quint32 bid = call.number(QStringLiteral("bid"));
    return m_accounts.change(bid, [&](QJsonObject &account) -> QJsonObject {
        const Entry before(QStringLiteral("account %1").arg(bid), account);
        pay(account, before, norm.number(QStringLiteral("price")));
        qint64 count = 0;
        const qint64 end = hand(account, before, wanted, norm, count);
        return {{QStringLiteral("code"), 0},
                {QStringLiteral("propId"), wanted.numberText(QStringLiteral("id"))},
                {QStringLiteral("count"), QString::number(count)},
                {QStringLiteral("expiryData"), QString::number(end)},
                {QStringLiteral("deadLine"), QString::number(Vip::daysLeft(end))}};
    });
}

/// A consumable goes down by one and is gone at the last.
QJsonObject Store::use(const Call &call)
{
    const quint32 id = call.number(QStringLiteral("prop"));
    const Entry used = prop(id);
    const bool isOn = call.number(QStringLiteral("use")) != 0;
    const quint32 bid = call.number(QStringLiteral("bid"));
    return m_accounts.change(bid, [&](QJsonObject &account) -> QJsonObject {
        OwnedProps owned(Entry(QStringLiteral("account %1").arg(bid), account));
        const std::optional<Entry> known = owned.find(id);
        const qint64 end = known ? known->number(QStringLiteral("endTime"), 0) : 0;
        const qint64 count = known ? known->number(QStringLiteral("count"), 0) : 0;
        if (count <= 0 || isOver(end))
            throw Refusal{Refusal::NotOwned, QStringLiteral("you do not own it, or no longer")};
        switch (toolTypeOf(used)) {
        case Switched:
            switchProp(owned, id, isOn);
            break;
        case Consumable:
        case OtherConsumable:
            owned.put(id, count - 1, end, false);
            if (count == 1)
                owned.remove(id);
            break;
        default:
            throw Refusal{Refusal::NotOwned, QStringLiteral("it can not be used")};
        }
        account.insert(QStringLiteral("props"), owned.toJson());
        return {{QStringLiteral("code"), 0}};
    });
}

QJsonObject Store::ownedProps(const Call &call)
{
    QJsonArray props;
    const Entry account = m_accounts.account(call.number(QStringLiteral("bid")));
    for (const Entry &prop : account.entries(QStringLiteral("props"))) {
        const qint64 end = prop.number(QStringLiteral("endTime"), 0);
        const auto yesOrNo = [](bool is) { return is ? QStringLiteral("2") : QStringLiteral("1"); };
        props.append(QJsonObject{
            {QStringLiteral("toolsId"), prop.numberText(QStringLiteral("id"))},
            {QStringLiteral("count"), prop.numberText(QStringLiteral("count"))},
            {QStringLiteral("endTime"), end == 0 ? QJsonValue() : QString::number(end)},
            {QStringLiteral("isUsing"), yesOrNo(prop.flag(QStringLiteral("using"), false))},
            {QStringLiteral("isExpire"), yesOrNo(isOver(end))},
        });
    }
    if (props.isEmpty())
        return {{QStringLiteral("code"), -1}, {QStringLiteral("msg"), QStringLiteral("nothing")}};
    return {{QStringLiteral("code"), 0}, {QStringLiteral("data"), props}};
}

QJsonObject Store::welfare(const Call &call)
{
    Signature::check(call);
    QJsonArray levels;
    const Entry file = m_data.read(QStringLiteral("welfare.json"));
    for (const Entry &level : file.entries(QStringLiteral("levels"))) {
        QJsonArray items;
        for (const Entry &item : level.entries(QStringLiteral("welfare")))
            items.append(QJsonObject{
                {QStringLiteral("id"), item.numberText(QStringLiteral("id"))},
                {QStringLiteral("numbers"), item.numberText(QStringLiteral("numbers"))}});
        levels.append(
            QJsonObject{{QStringLiteral("vipLevel"), level.numberText(QStringLiteral("vipLevel"))},
                        {QStringLiteral("discount"),
                         QString::number(level.fraction(QStringLiteral("discount"), 1))},
                        {QStringLiteral("room"), level.numberText(QStringLiteral("room"))},
                        {QStringLiteral("price"), level.numberText(QStringLiteral("price"))},
                        {QStringLiteral("welfare"), items}});
    }
    return {{QStringLiteral("code"), 0}, {QStringLiteral("data"), levels}};
}
