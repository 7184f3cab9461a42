#include "platform/Utf8Names.h"

#include <locale.h>

namespace platform {

Utf8Names::Utf8Names() : m_utf8(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr))
{
    if (m_utf8)
        m_previous = uselocale(static_cast<locale_t>(m_utf8));
}

Utf8Names::~Utf8Names()
{
    if (!m_utf8)
        return;
    uselocale(static_cast<locale_t>(m_previous));
    freelocale(static_cast<locale_t>(m_utf8));
}

} // namespace platform
