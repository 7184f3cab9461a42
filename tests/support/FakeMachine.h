#pragma once

#include "platform/MachineInfo.h"

/// In force as the machine for as long as it lives.
class FakeMachine : public platform::MachineInfo
{
public:
    FakeMachine() { replace(this); }
    ~FakeMachine() override { replace(nullptr); }
    bool is64Bit() const override { return true; }
    QByteArray processorIdentity() const override { return identity; }
    QString homePath() const override { return home; }

    QByteArray identity = "another processor";
    QString home;
};
