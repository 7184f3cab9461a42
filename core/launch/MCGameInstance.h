#pragma once

#include "core/launch/GameInstance.h"

/// A GameInstance of Minecraft. Abstract: the host's classes derive from it.
class RIVETCORE_EXPORT MCGameInstance : public GameInstance
{
    Q_OBJECT
public:
    explicit MCGameInstance(QObject *parent = nullptr);
    ~MCGameInstance() override;
};
