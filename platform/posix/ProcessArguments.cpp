#include "platform/ProcessArguments.h"

namespace platform {

void setProcessArguments(QProcess &process, const QStringList &arguments)
{
    process.setArguments(arguments);
}

} // namespace platform
