#include "core/accounts/OrMCAuthSession.h"

OrMCAuthSession::OrMCAuthSession() = default;
OrMCAuthSession::OrMCAuthSession(const OrMCAuthSession &other) = default;
OrMCAuthSession &OrMCAuthSession::operator=(const OrMCAuthSession &other) = default;
OrMCAuthSession::~OrMCAuthSession() = default;

bool OrMCAuthSession::IsSessionValid(unsigned bid) const
{
    return m_currentBid != 0 && m_currentBid == bid && !m_accessToken.isEmpty() &&
           !m_playerName.isEmpty();
}
