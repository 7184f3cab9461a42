#pragma once

#include "service/DataFolder.h"
#include "service/Exchange.h"

/// The instances of a user, the public servers, the status of the game server that the service
/// plays itself, and the launcher's settings. Any thread.
class GameServers
{
public:
    explicit GameServers(DataFolder &data);

    Answer instances(const Call &call);
    QJsonObject publicServers(const Call &call);
    QJsonObject settings(const Call &call);
    /// What the status exchange tells. Throws Exception for a broken file.
    QByteArray status();

private:
    DataFolder &m_data;
};
