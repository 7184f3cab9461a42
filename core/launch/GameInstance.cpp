#include "core/launch/GameInstance.h"

GameInstance::GameInstance(QObject *parent) : QObject(parent) {}

GameInstance::~GameInstance() = default;

bool GameInstance::isUpdated()
{
    return false;
}

void GameInstance::remove()
{
    Q_EMIT removed(this);
}
