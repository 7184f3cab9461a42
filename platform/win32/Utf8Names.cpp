#include "platform/Utf8Names.h"

namespace platform {

Utf8Names::Utf8Names() = default;

Utf8Names::~Utf8Names() = default;

} // namespace platform
