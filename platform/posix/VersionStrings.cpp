#include "platform/VersionStrings.h"

#include <QSettings>
#include <QStringList>

namespace platform {

QString versionString(const QString &executable, const QString &name)
{
    const QSettings versions(executable + QLatin1String(".version"), QSettings::IniFormat);
    // A comma makes a list of a value that stands there without quotes.
    return versions.value(name).toStringList().join(QLatin1Char(','));
}

} // namespace platform
