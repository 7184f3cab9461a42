#include "service/AccountStore.h"

#include <utility>

#include <QFileInfo>
#include <QJsonDocument>

#include "service/Exchange.h"
#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Json.h"

namespace {

const QString accountsFile = QStringLiteral("accounts.json");
constexpr qint64 firstBid = 1000;

QString keyOf(const Entry &account)
{
    return account.numberText(QStringLiteral("bid"));
}

} // namespace

AccountStore::AccountStore(DataFolder &data, QString stateFile)
    : m_data(data), m_stateFile(std::move(stateFile))
{
}

/// Account id to the values that have changed, or for a registered account to all values.
QJsonObject AccountStore::state() const
{
    const std::optional<QByteArray> text = FS::readFile(m_stateFile);
    if (!text) {
        if (QFileInfo::exists(m_stateFile))
            throw Exception(m_stateFile % QLatin1String(" can not be read"));
        return {};
    }
    return Json::requireObject(Json::requireDocument(*text, m_stateFile), m_stateFile);
}

void AccountStore::write(const QJsonObject &state) const
{
    if (!FS::writeFile(m_stateFile, QJsonDocument(state).toJson()))
        throw Exception(m_stateFile % QLatin1String(" can not be written"));
}

QList<Entry> AccountStore::all()
{
    const QJsonObject happened = state();
    QJsonObject left = happened;
    QList<Entry> accounts;
    const auto addMerged = [&](const QString &where, QJsonObject object, const QJsonObject &over) {
        for (auto it = over.begin(); it != over.end(); ++it)
            object.insert(it.key(), it.value());
        accounts.append(Entry(where, object));
    };
    for (const Entry &account : m_data.read(accountsFile).entries(QStringLiteral("accounts"))) {
        const QString key = keyOf(account);
        addMerged(QStringLiteral("%1: account %2").arg(accountsFile, key), account.object(),
                  happened.value(key).toObject());
        left.remove(key);
    }
    for (auto it = left.begin(); it != left.end(); ++it) {
        // Of an account that was taken out of the file only the changes are left.
        if (it.value().toObject().contains(QLatin1String("user")))
            addMerged(QStringLiteral("%1: account %2").arg(m_stateFile, it.key()), {},
                      it.value().toObject());
    }
    return accounts;
}

Entry AccountStore::find(quint32 bid)
{
    for (const Entry &account : all()) {
        if (account.number(QStringLiteral("bid")) == qint64(bid))
            return account;
    }
    throw Refusal{Refusal::UnknownAccount, QStringLiteral("no account %1").arg(bid)};
}

Entry AccountStore::account(quint32 bid)
{
    const std::lock_guard lock(m_mutex);
    return find(bid);
}

Entry AccountStore::account(const QString &user)
{
    const std::lock_guard lock(m_mutex);
    for (const Entry &account : all()) {
        if (account.text(QStringLiteral("user")) == user)
            return account;
    }
    throw Refusal{Refusal::UnknownAccount, QStringLiteral("no account of that name")};
}

QJsonObject AccountStore::change(quint32 bid, const std::function<QJsonObject(QJsonObject &)> &step)
{
    const std::lock_guard lock(m_mutex);
    const QJsonObject before = find(bid).object();
    QJsonObject after = before;
    const QJsonObject result = step(after);
    QJsonObject happened = state();
    const QString key = QString::number(bid);
    QJsonObject changes = happened.value(key).toObject();
    for (auto it = after.begin(); it != after.end(); ++it) {
        if (before.value(it.key()) != it.value())
            changes.insert(it.key(), it.value());
    }
    happened.insert(key, changes);
    write(happened);
    return result;
}

void AccountStore::add(QJsonObject account)
{
    const std::lock_guard lock(m_mutex);
    qint64 bid = firstBid;
    for (const Entry &known : all()) {
        if (known.text(QStringLiteral("user")) == account.value(QLatin1String("user")).toString())
            throw Refusal{Refusal::NameTaken, QStringLiteral("the user name is taken")};
        bid = qMax(bid, known.number(QStringLiteral("bid")) + 1);
    }
    account.insert(QStringLiteral("bid"), bid);
    QJsonObject happened = state();
    happened.insert(QString::number(bid), account);
    write(happened);
}

void AccountStore::reset()
{
    const std::lock_guard lock(m_mutex);
    write({});
}
