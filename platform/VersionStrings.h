#pragma once

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// The version string called @p name, such as "ProductVersion", of the program file @p executable;
/// empty if it can't be read. On Windows it stands in the program's version resource, in the first
/// of its languages; elsewhere in the INI file "<executable>.version" beside it. Any thread.
RIVETPLATFORM_EXPORT QString versionString(const QString &executable, const QString &name);

} // namespace platform
