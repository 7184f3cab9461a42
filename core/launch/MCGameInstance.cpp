#include "core/launch/MCGameInstance.h"

MCGameInstance::MCGameInstance(QObject *parent) : GameInstance(parent) {}

MCGameInstance::~MCGameInstance() = default;
