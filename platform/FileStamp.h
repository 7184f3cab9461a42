#pragma once

#include <QByteArray>
#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// Bytes that stay the same as long as the same unchanged file lies under @p path: its size, its
/// dates, and where it costs nothing, its identity. Follows links. Empty if there is no file.
RIVETPLATFORM_EXPORT QByteArray fileStamp(const QString &path);

} // namespace platform
