#include "platform/LocalAppData.h"

#include "platform/Replaceable.h"

namespace platform {

LocalAppData::~LocalAppData() = default;

const LocalAppData &LocalAppData::current()
{
    return Replaceable<const LocalAppData>::over(ofSystem()).current();
}

void LocalAppData::replace(const LocalAppData *other)
{
    Replaceable<const LocalAppData>::over(ofSystem()).replace(other);
}

} // namespace platform
