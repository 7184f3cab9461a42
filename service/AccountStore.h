#pragma once

#include <functional>
#include <mutex>

#include "service/DataFolder.h"

/// All accounts: those of accounts.json, with what has happened to them since, and those that were
/// registered. What has happened lies in a state file of its own, replaced as a whole at each
/// change. Any thread. Each operation throws Refusal for an account that is not there, and
/// Exception for a file that is broken.
class AccountStore
{
public:
    AccountStore(DataFolder &data, QString stateFile);

    /// The account with that id, or that user name.
    Entry account(quint32 bid);
    Entry account(const QString &user);

    /// Runs @p step on the account and keeps what it leaves there; nothing of it if it throws.
    /// Other changes wait meanwhile.
    QJsonObject change(quint32 bid, const std::function<QJsonObject(QJsonObject &)> &step);
    /// Adds an account under the next free id. Throws Refusal if the user name is taken.
    void add(QJsonObject account);
    /// Forgets all that has happened.
    void reset();

private:
    QList<Entry> all();
    Entry find(quint32 bid);
    QJsonObject state() const;
    void write(const QJsonObject &state) const;

    DataFolder &m_data;
    const QString m_stateFile;
    std::mutex m_mutex;
};
