#include "platform/win32/NativePath.h"

#include <QDir>

namespace platform {

std::wstring nativePath(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QDir::cleanPath(path));
    if (native.startsWith(QLatin1String("\\\\?\\")))
        return native.toStdWString();
    if (native.startsWith(QLatin1String("\\\\")))
        return QString(QLatin1String("\\\\?\\UNC\\") + native.mid(2)).toStdWString();
    return QString(QLatin1String("\\\\?\\") + native).toStdWString();
}

} // namespace platform
