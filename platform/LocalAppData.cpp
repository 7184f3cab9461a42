#include "platform/LocalAppData.h"

#include "platform/Replaceable.h"

namespace platform {

LocalAppData::~LocalAppData() = default;

static Replaceable<const LocalAppData> &holder(const LocalAppData &ofSystem)
{
    static Replaceable<const LocalAppData> inForce(ofSystem);
    return inForce;
}

const LocalAppData &LocalAppData::current()
{
    return holder(ofSystem()).current();
}

void LocalAppData::replace(const LocalAppData *other)
{
    holder(ofSystem()).replace(other);
}

} // namespace platform
