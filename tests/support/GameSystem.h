#pragma once

#include <QString>

/// What the scripted game asks of the system. One implementation for each.
namespace GameSystem {

/// Opens a window with an empty title.
void openWindow();
/// The title that the window has now.
QString windowTitle();
/// Ends this process the way a crash does.
void crash();

} // namespace GameSystem
