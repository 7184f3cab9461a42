#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "base/RivetCoreExport.h"

/// Asks a game server how many players it has and how fast it answers, by the game's own status
/// exchange.
///
/// Any thread, several at once. It has no state.
class RIVETCORE_EXPORT GetServerPlayerInfo
{
public:
    /// True if the server began to answer in time. @p waitMs bounds each of three waits: for the
    /// connection, for the first byte and for the rest.
    ///
    /// @p result gets "code", 0 after an answer that tells of players, else 2; "lag", the response
    /// time as 1 (at most 150 ms), 2 (at most 300 ms) or 3; with the code 0 also "max" and
    /// "online", each -1 if the answer does not have it.
    ///
    /// Blocks. While a host name is looked up, and while the rest of an answer is on its way, it
    /// runs a local event loop, which delivers other events of this thread.
    bool requestPlayerInfo(QMap<QString, QVariant> &result, const QString &host,
                           unsigned short port, unsigned int waitMs) const;
};
