#pragma once

#include <QString>

/// The file in the instance directory that takes all that the game prints, "game-output.log". The
/// system writes it while the game runs; the run before is kept as "game-output.previous.log".
namespace GameOutputLog {

/// Makes room for a new run and names the file for its output. Where that can't be written, it is
/// logged, and the name is that of the system's null device.
QString startNew(const QString &instanceDir);

} // namespace GameOutputLog
