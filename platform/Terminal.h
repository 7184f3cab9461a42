#pragma once

#include <optional>

#include <QString>

#include "platform/RivetPlatformExport.h"

/// The terminal that a console program was started from. Main thread.
namespace platform::Terminal {

/// True if what goes to the standard output is read by somebody at a terminal.
RIVETPLATFORM_EXPORT bool isInteractive();

/// Makes the terminal take UTF-8; once, at start.
RIVETPLATFORM_EXPORT void prepare();

/// Characters in a line; 80 where that can't be told.
RIVETPLATFORM_EXPORT int columns();

/// Asks for a line. Blocks until it or an interrupt comes. Nothing after an interrupt, and if there
/// is no terminal to read from.
RIVETPLATFORM_EXPORT std::optional<QString> readLine(const QString &prompt);

/// The same for a line that is not shown as it is typed.
RIVETPLATFORM_EXPORT std::optional<QString> readSecret(const QString &prompt);

} // namespace platform::Terminal
