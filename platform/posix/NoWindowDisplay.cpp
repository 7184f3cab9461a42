#include "platform/posix/WindowDisplay.h"

namespace platform {

std::unique_ptr<WindowDisplay> WindowDisplay::open()
{
    return nullptr;
}

} // namespace platform
