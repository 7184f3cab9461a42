#pragma once

#include <QDateTime>
#include <QtGlobal>

namespace Vip {

constexpr qint64 daySeconds = 86'400;

/// Days that begin before @p endTime, in seconds since 1970; 0 when it is over.
inline qint64 daysLeft(qint64 endTime)
{
    const qint64 left = endTime - QDateTime::currentSecsSinceEpoch();
    return left > 0 ? (left + daySeconds - 1) / daySeconds : 0;
}

} // namespace Vip
