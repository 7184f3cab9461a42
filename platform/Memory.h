#pragma once

#include "platform/RivetPlatformExport.h"

namespace platform {

/// Gives memory back to the system: on Windows it trims the working set of every process that
/// this user may touch, on POSIX it returns the free part of this process's heap. Never fails;
/// takes some milliseconds.
RIVETPLATFORM_EXPORT void trimMemory();

} // namespace platform
