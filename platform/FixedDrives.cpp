#include "platform/FixedDrives.h"

#include "platform/Replaceable.h"

namespace platform {

FixedDrives::~FixedDrives() = default;

const FixedDrives &FixedDrives::current()
{
    return Replaceable<const FixedDrives>::over(ofSystem()).current();
}

void FixedDrives::replace(const FixedDrives *other)
{
    Replaceable<const FixedDrives>::over(ofSystem()).replace(other);
}

} // namespace platform
