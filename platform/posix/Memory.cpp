#include "platform/Memory.h"

#include <malloc.h>

namespace platform {

void trimMemory()
{
    malloc_trim(0);
}

} // namespace platform
