#include "platform/Firewall.h"

#include "platform/Replaceable.h"

namespace platform {

Firewall::~Firewall() = default;

static Replaceable<const Firewall> &holder(const Firewall &system)
{
    static Replaceable<const Firewall> firewall(system);
    return firewall;
}

const Firewall &Firewall::current()
{
    return holder(system()).current();
}

void Firewall::replace(const Firewall *other)
{
    holder(system()).replace(other);
}

} // namespace platform
