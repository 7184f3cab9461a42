#pragma once

#include <memory>

#include <QHash>
#include <QJsonObject>
#include <QString>

#include "base/RivetCoreExport.h"

struct RivetUserSecurityLoginInfo;

/// All users who have logged in on this machine. Main thread only.
class RIVETCORE_EXPORT RivetUserList : public std::enable_shared_from_this<RivetUserList>
{
public:
    virtual ~RivetUserList();

    /// The form that the host's pages see.
    QJsonObject toJsonObject() const;

    /// The record of @p userName; null if the user is not known, or his record can't be read.
    std::shared_ptr<RivetUserSecurityLoginInfo> recordOf(const QString &userName) const;

    /// By name, compared with case. Null where a name is known, but its record can't be read.
    QHash<QString, std::shared_ptr<RivetUserSecurityLoginInfo>> users;
    /// May name a user who has been removed.
    QString lastLoginUser;
};
