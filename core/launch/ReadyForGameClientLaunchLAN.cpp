#include "core/launch/ReadyForGameClientLaunchLAN.h"

#include <QProcessEnvironment>

#include "support/jsonfskit/Log.h"

void ReadyForGameClientLaunchLAN::SetLANExternData(const QString &roomOwnerAddr, bool owner)
{
    m_roomOwnerAddr = roomOwnerAddr;
    m_isOwner = owner;
}

void ReadyForGameClientLaunchLAN::InitGameClientEnv(QProcessEnvironment &env)
{
    ReadyForGameClientLaunch::InitGameClientEnv(env);
    if (!m_isOwner && m_roomOwnerAddr.isEmpty()) {
        Log::critical(QStringLiteral("room owner addr is empty"));
        return;
    }
    env.insert(QStringLiteral("room_game_server_addr"), m_roomOwnerAddr);
    env.insert(QStringLiteral("room_o_flag"),
               m_isOwner ? QStringLiteral("1") : QStringLiteral("0"));
}
