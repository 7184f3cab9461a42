#pragma once

#include "service/AccountStore.h"
#include "service/Exchange.h"

/// The store of props: catalogue, purchase, use, what a user owns, and what VIP levels give.
/// Any thread.
class Store
{
public:
    Store(DataFolder &data, AccountStore &accounts);

    QJsonObject props(const Call &call);
    QJsonObject buy(const Call &call);
    QJsonObject use(const Call &call);
    QJsonObject ownedProps(const Call &call);
    QJsonObject welfare(const Call &call);

private:
    Entry prop(quint32 id);

    DataFolder &m_data;
    AccountStore &m_accounts;
};
