#include "platform/OtherProcesses.h"

#include "platform/Replaceable.h"

namespace platform {

OtherProcesses::~OtherProcesses() = default;

static Replaceable<const OtherProcesses> &holder(const OtherProcesses &system)
{
    static Replaceable<const OtherProcesses> processes(system);
    return processes;
}

const OtherProcesses &OtherProcesses::current()
{
    return holder(system()).current();
}

void OtherProcesses::replace(const OtherProcesses *other)
{
    holder(system()).replace(other);
}

} // namespace platform
