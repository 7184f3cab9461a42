#include "support/jsonfskit/FileNames.h"

#include <QStringList>

namespace FS {

bool isDeviceName(const QString &component)
{
    static const QStringList devices{QStringLiteral("CON"),    QStringLiteral("PRN"),
                                     QStringLiteral("AUX"),    QStringLiteral("NUL"),
                                     QStringLiteral("CONIN$"), QStringLiteral("CONOUT$")};
    const QString stem = component.section(QLatin1Char('.'), 0, 0).trimmed().toUpper();
    if (devices.contains(stem))
        return true;
    static const QString numbers = QStringLiteral("123456789\u00b9\u00b2\u00b3");
    return stem.size() == 4 && numbers.contains(stem.at(3)) &&
           (stem.startsWith(QLatin1String("COM")) || stem.startsWith(QLatin1String("LPT")));
}

} // namespace FS
