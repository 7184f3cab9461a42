#include "platform/OtherProcesses.h"

#include "platform/Replaceable.h"

namespace platform {

OtherProcesses::~OtherProcesses() = default;

const OtherProcesses &OtherProcesses::current()
{
    return Replaceable<const OtherProcesses>::over(ofSystem()).current();
}

void OtherProcesses::replace(const OtherProcesses *other)
{
    Replaceable<const OtherProcesses>::over(ofSystem()).replace(other);
}

} // namespace platform
