#include "platform/FixedDrives.h"

#include "platform/Replaceable.h"

namespace platform {

FixedDrives::~FixedDrives() = default;

static Replaceable<const FixedDrives> &holder(const FixedDrives &ofSystem)
{
    static Replaceable<const FixedDrives> inForce(ofSystem);
    return inForce;
}

const FixedDrives &FixedDrives::current()
{
    return holder(ofSystem()).current();
}

void FixedDrives::replace(const FixedDrives *other)
{
    holder(ofSystem()).replace(other);
}

} // namespace platform
