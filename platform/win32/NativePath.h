#pragma once

#include <string>

#include <QString>

namespace platform {

/// The absolute @p path in the form that the wide calls take without the limit of 260 characters.
std::wstring nativePath(const QString &path);

} // namespace platform
