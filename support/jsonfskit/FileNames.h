#pragma once

#include <QString>

#include "support/jsonfskit/JsonFsKitExport.h"

/// What can stand as one part of a path. The rules are those of Windows on every system, so that a
/// name that is good on one is good on all. Any thread.
namespace FS {

/// True for what Windows takes for a device. Such names hold with every extension, and blanks
/// before the dot do not help.
JSONFSKIT_EXPORT bool isDeviceName(const QString &component);

} // namespace FS
