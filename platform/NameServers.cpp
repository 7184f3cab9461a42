#include "platform/NameServers.h"

#include <QProcess>

#include "platform/Replaceable.h"

namespace platform {

NameServers::~NameServers() = default;

QString NameServers::command(const QString &interfaceName, const QString &address)
{
    // Both at once: the name of an interface may hold "%2".
    return commandTemplate().arg(interfaceName, address);
}

void NameServers::run(const QString &command, std::chrono::milliseconds longest) const
{
    QStringList arguments = QProcess::splitCommand(command);
    const QString program = arguments.takeFirst();
    QProcess process;
    process.start(program, arguments, QIODevice::ReadWrite);
    if (process.waitForFinished(static_cast<int>(longest.count())))
        return;
    process.kill();
    process.waitForFinished();
}

const NameServers &NameServers::current()
{
    return Replaceable<const NameServers>::over(ofSystem()).current();
}

void NameServers::replace(const NameServers *other)
{
    Replaceable<const NameServers>::over(ofSystem()).replace(other);
}

} // namespace platform
