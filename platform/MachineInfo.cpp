#include "platform/MachineInfo.h"

#include <QDir>

#include "platform/ProcessorIdentity.h"
#include "platform/Replaceable.h"

namespace platform {

namespace {

class RealMachine final : public MachineInfo
{
public:
    bool is64Bit() const override { return isSystem64Bit(); }
    QByteArray processorIdentity() const override { return readProcessorIdentity(); }
    QString homePath() const override { return QDir::homePath(); }
};

Replaceable<const MachineInfo> &machine()
{
    static const RealMachine real;
    return Replaceable<const MachineInfo>::over(real);
}

} // namespace

MachineInfo::~MachineInfo() = default;

const MachineInfo &MachineInfo::current()
{
    return machine().current();
}

void MachineInfo::replace(const MachineInfo *other)
{
    machine().replace(other);
}

} // namespace platform
