#pragma once

#include <functional>

#include <QTcpServer>

#include "service/Faults.h"
#include "service/Traffic.h"

/// A game server, as far as its status goes: takes the handshake, tells the status, echoes a ping.
/// Whoever says anything else is hung up on. Loopback only; needs the event loop of its thread.
/// Faults and counts go by the path "/game/status".
class StatusServer : public QTcpServer
{
    Q_OBJECT
public:
    /// @p status gives the JSON text to tell; nothing hangs up.
    StatusServer(std::function<QByteArray()> status, Faults &faults, Traffic &traffic);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    const std::function<QByteArray()> m_status;
    Faults &m_faults;
    Traffic &m_traffic;
};
