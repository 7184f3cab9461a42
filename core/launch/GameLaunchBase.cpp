#include "core/launch/GameLaunchBase.h"

GameLaunchBase::GameLaunchBase(QObject *parent) : TaskAbstract(parent)
{
    // For queued connections and signal spies, which know types by name.
    qRegisterMetaType<GameLaunchBase::Error>("GameLaunchBase::Error");
}

GameLaunchBase::~GameLaunchBase() = default;

GameLaunchBase::Error GameLaunchBase::lastError() const
{
    return m_error;
}

void GameLaunchBase::setError(GameLaunchBase::Error enError)
{
    m_error = enError;
    Q_EMIT error(enError);
}
