#include <windows.h>

#include "platform/ProcessorIdentity.h"

namespace platform {

bool isSystem64Bit()
{
    SYSTEM_INFO system{};
    GetNativeSystemInfo(&system);
    return system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64 ||
           system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_ARM64;
}

} // namespace platform
