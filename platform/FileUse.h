#pragma once

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

enum class FileUse {
    Free,    ///< nobody else is seen to use the file
    Held,    ///< another process runs it or has it open
    Unknown, ///< it can't be had for another reason, such as missing rights
};

/// Whether another process uses the file now. On Windows any open handle counts and the answer is
/// certain, but that a write-protected file is Unknown. On POSIX it is advice: only processes of
/// which this user may know are looked at, on systems with /proc; a yes is certain. May take some
/// ten milliseconds.
[[nodiscard]] RIVETPLATFORM_EXPORT FileUse fileUse(const QString &absolutePath);

} // namespace platform
