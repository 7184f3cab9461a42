#pragma once

#include "core/launch/ReadyForGameClientLaunch.h"

/// Starts the game for a room of the local network, which it tells by two more variables.
class RIVETCORE_EXPORT ReadyForGameClientLaunchLAN : public ReadyForGameClientLaunch
{
    Q_OBJECT
public:
    using ReadyForGameClientLaunch::ReadyForGameClientLaunch;

    /// @p owner tells whether the room is the user's own; a guest needs the owner's address.
    void SetLANExternData(const QString &roomOwnerAddr, bool owner);

    void InitGameClientEnv(QProcessEnvironment &env) override;

private:
    QString m_roomOwnerAddr;
    bool m_isOwner = false;
};
