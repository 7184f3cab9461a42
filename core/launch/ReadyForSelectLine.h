#pragma once

#include <QList>
#include <QString>

#include "core/launch/MinecraftLaunchStep.h"

struct OrAuthServerInstanceInfo;

/// Where a server can be reached.
struct ServerAddress
{
    QString host;
    quint16 port = 0;
};

/// Picks one of the addresses of a server, its lines, at random and writes it into the record of
/// the launch. Without an address or a record it leaves a line on the log and succeeds, for the
/// game can be started without a server.
class RIVETCORE_EXPORT ReadyForSelectLine : public MinecraftLaunchStep
{
    Q_OBJECT
public:
    ReadyForSelectLine(std::shared_ptr<OrAuthServerInstanceInfo> info,
                       std::weak_ptr<MCInstanceObj> instance, IResManager *manager,
                       QObject *parent);
    ~ReadyForSelectLine() override;

    /// Replaces the addresses: each a host, or a host and a port with a colon between them. The
    /// port is 25565 unless a number from 1 says otherwise.
    void setServerAddressList(QList<QString> addresses);

protected:
    void onTaskRun() override;

private:
    bool selectLine(QList<ServerAddress> list, ServerAddress &out);

    QList<ServerAddress> m_addresses;
    const std::shared_ptr<OrAuthServerInstanceInfo> m_info;
};
