#pragma once

#include <optional>

#include <QJsonObject>
#include <QString>

#include "core/accounts/OrMCAuthSession.h"

/// What lets a user play while the service can't be reached: the last accepted login answer and
/// game session of each account, enciphered for this machine, in the folder "offline" of the local
/// data directory. A user who logs out is forgotten. Main thread.
namespace OfflineLogins {

struct Login
{
    QJsonObject answer;      ///< in the form that IRivetUserProfile::setCurrentProfile() takes
    OrMCAuthSession session; ///< not valid until one has been accepted
};

/// False if it can't be written.
[[nodiscard]] bool keep(const QString &userName, const Login &login);
/// Nothing if there is none, or it is of another machine.
std::optional<Login> of(const QString &userName);
/// False if there is one and it can't be removed.
[[nodiscard]] bool forget(const QString &userName);

} // namespace OfflineLogins
