#include "platform/Firewall.h"

#include "platform/Replaceable.h"

namespace platform {

Firewall::~Firewall() = default;

const Firewall &Firewall::current()
{
    return Replaceable<const Firewall>::over(ofSystem()).current();
}

void Firewall::replace(const Firewall *other)
{
    Replaceable<const Firewall>::over(ofSystem()).replace(other);
}

} // namespace platform
