#pragma once

#include <mutex>

#include <QSet>

#include "service/AccountStore.h"
#include "service/Exchange.h"

/// Login, registration, user information and the way into the game. Any thread.
class Accounts
{
public:
    Accounts(DataFolder &data, AccountStore &store);

    QJsonObject logIn(const Call &call);
    QJsonObject verifyCode(const Call &call);
    QJsonObject enrol(const Call &call);
    QJsonObject userInfo(const Call &call);
    QJsonObject enterGame(const Call &call);

private:
    DataFolder &m_data;
    AccountStore &m_store;
    std::mutex m_mutex;
    QSet<QString> m_verified; ///< user names whose code was right, until they are registered
};
