#pragma once

#include <QString>

/// What the user-info service and the store know of the logged-in user.
struct RivetUserInfo
{
    quint32 userId = 0;
    quint32 money = 0;
    QString nickName; ///< always empty: no service sends it
    qint16 gender = 0;
    quint16 vipLevel = 1;
    quint32 vipEndTime = 0; ///< seconds since the epoch
    qint32 vipDaysLeft = 0;
};
