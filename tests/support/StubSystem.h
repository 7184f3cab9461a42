#pragma once

#include <QString>

/// What the stub Java asks of the system. One implementation for each.
namespace StubSystem {

/// Opens a window with an empty title.
void openWindow();
/// The title that the window has now.
QString windowTitle();
/// Ends this process the way a crash does.
void crash();

} // namespace StubSystem
