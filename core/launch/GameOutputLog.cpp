#include "core/launch/GameOutputLog.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include "platform/FileEntry.h"
#include "support/jsonfskit/Log.h"

namespace GameOutputLog {

QString startNew(const QString &instanceDir)
{
    const QString dir = QDir::cleanPath(QDir(instanceDir).absolutePath());
    const QString current = dir + QLatin1String("/game-output.log");
    const QString previous = dir + QLatin1String("/game-output.previous.log");
    if (QFile::exists(current) &&
        platform::replaceFile(current, previous) != platform::RenameOutcome::Renamed)
        Log::warning(QLatin1String("the game's last output could not be kept: ") + current);

    // A process whose output can't be opened does not start.
    if (QFile(current).open(QIODevice::WriteOnly))
        return current;
    Log::warning(QLatin1String("the game's output could not be opened: ") + current);
    return QProcess::nullDevice();
}

} // namespace GameOutputLog
