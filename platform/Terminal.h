#pragma once

#include <optional>

#include <QString>

#include "platform/RivetPlatformExport.h"

/// The terminal that a console program was started from. Main thread.
namespace platform::Terminal {

/// True if what goes to the standard output is read by somebody at a terminal.
RIVETPLATFORM_EXPORT bool isInteractive();

/// Makes the terminal take UTF-8 until the end of the program; once, at start.
RIVETPLATFORM_EXPORT void prepare();

/// From now on @p handler is called whenever the program is asked to end: by Ctrl-C, by another
/// program, or because its terminal goes, which on Windows leaves some seconds. It runs in a signal
/// handler, or on a thread of the system's. May be called again.
RIVETPLATFORM_EXPORT void watchEnd(void (*handler)());

/// Characters in a line; 80 where that can't be told.
RIVETPLATFORM_EXPORT int columns();

/// Asks for a line. Blocks until it or an interrupt comes. Nothing after an interrupt, and if there
/// is no terminal to read from.
RIVETPLATFORM_EXPORT std::optional<QString> readLine(const QString &prompt);

/// The same for a line that is not shown as it is typed.
RIVETPLATFORM_EXPORT std::optional<QString> readSecret(const QString &prompt);

} // namespace platform::Terminal
