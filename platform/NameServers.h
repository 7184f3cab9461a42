#pragma once

#include <chrono>

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// The name servers of the machine. Any thread.
///
/// Tests install an implementation of their own; the product always uses the system's.
class RIVETPLATFORM_EXPORT NameServers
{
public:
    virtual ~NameServers();

    /// The address of the first name server; empty if there is none or it can't be told.
    virtual QString first() const = 0;

    /// Runs a command() and waits for its end, at most for @p longest; then it is ended. Nothing
    /// tells how it went.
    virtual void run(const QString &command, std::chrono::milliseconds longest) const;

    /// The command line that makes @p address the name server of the network interface of that
    /// name. In the form that QProcess splits.
    static QString command(const QString &interfaceName, const QString &address);

    static const NameServers &current();

    /// Puts @p other in the place of the system; null brings the system back. Not owned.
    static void replace(const NameServers *other);

private:
    /// One implementation of each for each system.
    static const NameServers &ofSystem();
    static QString commandTemplate();
};

} // namespace platform
