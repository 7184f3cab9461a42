#pragma once

#include <QString>

#include "base/RivetCoreExport.h"

/// The option files that the game reads at its start. Lines that the core has no word in stay byte
/// for byte; lines that it writes end in CR LF. Each file is replaced as a whole; one that can't be
/// written is logged and stays as it is.
namespace GameOptions {

/// The first resource pack or shader pack (*.zip, *.7z) in @p folder, in the folder's own order;
/// empty if there is none.
RIVETCORE_EXPORT QString firstPack(const QString &folder);

/// Makes @p pack the only resource pack of the game's options.txt, and Chinese its language where
/// the file names none. False only if the file is there and can't be read.
RIVETCORE_EXPORT bool updateOptions(const QString &file, const QString &pack);

/// Makes @p pack the shader pack of the shader mod's optionsshaders.txt, which is kept in the
/// system's 8-bit encoding. False only if the file is there and can't be read.
RIVETCORE_EXPORT bool updateShaderOptions(const QString &file, const QString &pack);

} // namespace GameOptions
