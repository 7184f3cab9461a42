#include <sys/utsname.h>

#include "platform/ProcessorIdentity.h"

namespace platform {

bool isSystem64Bit()
{
    utsname system{};
    // A 32-bit process on a 64-bit kernel still reads the kernel's machine name here.
    return uname(&system) == 0 && QByteArray(system.machine).contains("64");
}

} // namespace platform
