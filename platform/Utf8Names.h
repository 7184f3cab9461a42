#pragma once

#include "platform/RivetPlatformExport.h"

namespace platform {

/// For as long as it lives, the C library takes names on this thread as UTF-8, whatever the
/// user's locale is. On Windows names go through wide characters, and it changes nothing.
/// Lives and dies on one thread.
class RIVETPLATFORM_EXPORT Utf8Names
{
public:
    Utf8Names();
    ~Utf8Names();
    Utf8Names(const Utf8Names &) = delete;
    Utf8Names &operator=(const Utf8Names &) = delete;

private:
    void *m_utf8 = nullptr;
    void *m_previous = nullptr;
};

} // namespace platform
