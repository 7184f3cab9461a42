#include "support/coresupport/CSystemInfo.h"

#include "platform/MachineInfo.h"

CSystemInfo::CSystemInfo(QObject *parent) : QObject(parent) {}

CSystemInfo::~CSystemInfo() = default;

bool CSystemInfo::IsOs64() const
{
    return platform::MachineInfo::current().is64Bit();
}
