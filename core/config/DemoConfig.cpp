#include "core/config/DemoConfig.h"

DemoConfig::DemoConfig(QObject *parent) : ConfigAbstract(parent) {}

DemoConfig::~DemoConfig() = default;

bool DemoConfig::load()
{
    return true;
}

bool DemoConfig::save()
{
    return true;
}

void DemoConfig::validateData() {}
