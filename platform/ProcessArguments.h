#pragma once

#include <QProcess>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// Gives a process that has not been started its arguments, so that it receives them character by
/// character as they are. QProcess alone leaves arguments without blanks bare on Windows, where a
/// Java program expands the wildcards in them.
RIVETPLATFORM_EXPORT void setProcessArguments(QProcess &process, const QStringList &arguments);

} // namespace platform
