#pragma once

#include <memory>

#include <QByteArray>
#include <QJsonObject>

#include "base/RivetCoreExport.h"

class Pickle;

/// What is remembered of one user's login. A plain value; main thread.
struct RIVETCORE_EXPORT RivetUserSecurityLoginInfo
    : public std::enable_shared_from_this<RivetUserSecurityLoginInfo>
{
    /// The 16 raw bytes of the digest, not hex text; empty in a new record.
    QByteArray passwordmd5;
    quint64 lastLoginTime = 0; ///< seconds since the epoch, UTC
    bool savePassword = false;
    bool autoLogin = false;

    void Reset();
    void UpdateLastLoginTime();

    void ToPickle(Pickle &pickle) const;
    /// False if a field can't be read or the digest is not one of 16 bytes; the fields before it
    /// have then been taken over.
    bool FromPickle(Pickle &pickle);

    /// The form that the host's pages see; the digest can't be had from it.
    QJsonObject toJsonObject() const;
};
