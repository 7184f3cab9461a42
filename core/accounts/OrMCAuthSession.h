#pragma once

#include <QString>

#include "base/RivetCoreExport.h"

/// A session with a game server: what the game's own login expects. A plain value.
class RIVETCORE_EXPORT OrMCAuthSession
{
public:
    OrMCAuthSession();
    OrMCAuthSession(const OrMCAuthSession &other);
    OrMCAuthSession &operator=(const OrMCAuthSession &other);
    ~OrMCAuthSession();

    /// The account that the session belongs to; 0 for none.
    unsigned GetCurrentOrBid() const { return m_currentBid; }
    void SetCurrentOrBid(unsigned bid) { m_currentBid = bid; }
    QString GetSession() const { return m_session; }
    void SetSession(const QString &session) { m_session = session; }
    QString GetAccessToken() const { return m_accessToken; }
    void SetAccessToken(const QString &token) { m_accessToken = token; }
    QString GetPlayerName() const { return m_playerName; }
    void SetPlayerName(const QString &name) { m_playerName = name; }
    QString GetUUID() const { return m_uuid; }
    void SetUUID(const QString &uuid) { m_uuid = uuid; }
    /// "legacy" unless the host says otherwise.
    QString GetUserType() const { return m_userType; }
    void SetUserType(const QString &type) { m_userType = type; }

    /// True if the session belongs to @p bid, which is not 0, and has an access token and a player
    /// name.
    bool IsSessionValid(unsigned bid) const;

private:
    unsigned m_currentBid = 0;
    QString m_session;
    QString m_accessToken;
    QString m_playerName;
    QString m_uuid;
    QString m_userType = QStringLiteral("legacy");
};
