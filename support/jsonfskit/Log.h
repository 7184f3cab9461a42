#pragma once

#include <QString>
#include <QtGlobal>

/// Log lines that join texts and values. What goes in is what stands on the log: no quotes and no
/// blanks are added, as a stream would.
namespace Log {

inline void debug(const QString &line)
{
    qDebug("%s", qUtf8Printable(line));
}

inline void warning(const QString &line)
{
    qWarning("%s", qUtf8Printable(line));
}

inline void critical(const QString &line)
{
    qCritical("%s", qUtf8Printable(line));
}

} // namespace Log
