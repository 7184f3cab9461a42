#include "service/Accounts.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QUuid>
#include <QVersionNumber>

#include "service/Signature.h"
#include "service/Vip.h"

namespace {

const QString accountsFile = QStringLiteral("accounts.json");
const QString gameFile = QStringLiteral("game.json");

QString md5Of(const QString &password)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Md5).toHex());
}

QString freshToken()
{
    return QUuid::createUuid().toString(QUuid::Id128);
}

bool isPassword(const Entry &account, const QString &md5)
{
    const QString key = QStringLiteral("passwordMd5");
    return md5.toLower() == (account.has(key) ? account.text(key).toLower()
                                              : md5Of(account.text(QStringLiteral("password"))));
}

/// The object at "user" of a login answer: numbers as decimal text, but for two.
QJsonObject userOf(const Entry &account)
{
    const Entry profile = account.entry(QStringLiteral("profile"));
    QJsonObject user;
    for (const char *name : {"exp", "gender", "sid", "flower", "level", "vip", "achieve",
                             "createTime", "status", "type", "bookCount", "cardCount"}) {
        const QString key = QLatin1String(name);
        user.insert(key, QString::number(profile.number(key, 0)));
    }
    for (const char *name : {"email", "nickname", "levelName", "homeUrl", "small", "middle", "_48",
                             "big", "normal", "thumbFileName"}) {
        const QString key = QLatin1String(name);
        user.insert(key, profile.text(key, {}));
    }
    user.insert(QStringLiteral("bid"), account.numberText(QStringLiteral("bid")));
    user.insert(QStringLiteral("expTotal"), profile.number(QStringLiteral("expTotal"), 0));
    user.insert(QStringLiteral("nowTime"), QDateTime::currentSecsSinceEpoch());
    return user;
}

QString playerNameOf(const Entry &account)
{
    const QString player = account.text(QStringLiteral("player"), {});
    return player.isEmpty() ? account.text(QStringLiteral("user")) : player;
}

} // namespace

Accounts::Accounts(DataFolder &data, AccountStore &store) : m_data(data), m_store(store) {}

/// A login ends the session of the one before.
QJsonObject Accounts::logIn(const Call &call)
{
    const Entry account = m_store.account(call.text(QStringLiteral("user")));
    if (!isPassword(account, call.text(QStringLiteral("password"))))
        throw Refusal{Refusal::WrongPassword, QStringLiteral("wrong password")};
    const QJsonObject user = userOf(account);
    const QString token = freshToken();
    m_store.change(quint32(account.number(QStringLiteral("bid"))), [&](QJsonObject &changed) {
        changed.insert(QStringLiteral("token"), token);
        return QJsonObject();
    });
    const QString name = account.text(QStringLiteral("user"));
    return {
        {QStringLiteral("code"), QStringLiteral("1")},
        {QStringLiteral("oruser"), name},
        {QStringLiteral("ortoken"), token},
        {QStringLiteral("loginAuth"), freshToken()},
        {QStringLiteral("oruser_profile"),
         QJsonObject{{QStringLiteral("login"), name}, {QStringLiteral("user"), user}}},
    };
}

QJsonObject Accounts::verifyCode(const Call &call)
{
    const QString right = m_data.read(accountsFile).text(QStringLiteral("verificationCode"));
    const QString user = call.text(QStringLiteral("user"));
    if (call.text(QStringLiteral("code")) != right)
        throw Refusal{Refusal::WrongVerification, QStringLiteral("wrong verification code")};
    const std::lock_guard lock(m_mutex);
    m_verified.insert(user);
    return {{QStringLiteral("code"), 0}};
}

QJsonObject Accounts::enrol(const Call &call)
{
    const QString user = call.text(QStringLiteral("user"));
    {
        const std::lock_guard lock(m_mutex);
        if (!m_verified.contains(user))
            throw Refusal{Refusal::WrongVerification, QStringLiteral("check the code first")};
    }
    QJsonObject account = m_data.read(accountsFile).entry(QStringLiteral("newAccount")).object();
    QJsonObject profile = account.value(QLatin1String("profile")).toObject();
    profile.insert(QStringLiteral("nickname"), call.text(QStringLiteral("name")));
    profile.insert(QStringLiteral("createTime"), QDateTime::currentSecsSinceEpoch());
    account.insert(QStringLiteral("profile"), profile);
    account.insert(QStringLiteral("user"), user);
    account.insert(QStringLiteral("passwordMd5"), md5Of(call.text(QStringLiteral("password"))));
    m_store.add(account);
    const std::lock_guard lock(m_mutex);
    m_verified.remove(user);
    return {{QStringLiteral("code"), 0}};
}

QJsonObject Accounts::userInfo(const Call &call)
{
    Signature::check(call);
    const Entry account = m_store.account(call.number(QStringLiteral("bid")));
    const qint64 vipEnd = account.number(QStringLiteral("vipEndTime"), 0);
    return {
        {QStringLiteral("code"), 0},
        {QStringLiteral("bid"), account.numberText(QStringLiteral("bid"))},
        {QStringLiteral("money"), QString::number(account.number(QStringLiteral("money"), 0))},
        {QStringLiteral("VIPlevel"),
         QString::number(account.number(QStringLiteral("vipLevel"), 1))},
        {QStringLiteral("deadLine"), QString::number(Vip::daysLeft(vipEnd))},
        {QStringLiteral("endTime"), QString::number(vipEnd)},
    };
}

QJsonObject Accounts::enterGame(const Call &call)
{
    constexpr int loggedInElsewhere = 2;
    constexpr int withoutSession = 3;
    constexpr int tooOld = 5;
    const Entry account = m_store.account(call.number(QStringLiteral("bid")));
    const QString token = call.text(QStringLiteral("token"));
    if (account.text(QStringLiteral("token"), {}) != token)
        throw Refusal{loggedInElsewhere, QStringLiteral("this is not the newest login")};
    const QString least = m_data.read(gameFile).text(QStringLiteral("minimumVersion"), {});
    const QString version = call.query.queryItemValue(QStringLiteral("version"));
    if (!version.isEmpty() &&
        QVersionNumber::fromString(version) < QVersionNumber::fromString(least))
        throw Refusal{tooOld, QString(QLatin1String("at least version ") % least)};
    if (account.flag(QStringLiteral("playsWithoutSession"), false))
        return {{QStringLiteral("code"), withoutSession}};
    const QString player = playerNameOf(account);
    return {
        {QStringLiteral("code"), 1},
        {QStringLiteral("token"), token},
        {QStringLiteral("pname"), player},
        {QStringLiteral("uuid"),
         QUuid::createUuidV3(QUuid(), QString(QLatin1String("OfflinePlayer:") % player))
             .toString(QUuid::Id128)},
    };
}
