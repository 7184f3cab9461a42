#pragma once

#include <QByteArray>
#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// What the core asks of the machine that it runs on. Any thread.
///
/// Tests install a machine of their own; the product always sees the real one.
class RIVETPLATFORM_EXPORT MachineInfo
{
public:
    virtual ~MachineInfo();

    /// True on a 64-bit operating system, whatever the word size of this process.
    virtual bool is64Bit() const = 0;

    /// The same bytes on every run on this machine, whichever core answers: vendor, model and
    /// brand of the processor as CPUID tells them.
    virtual QByteArray processorIdentity() const = 0;

    /// The user's home directory, absolute.
    virtual QString homePath() const = 0;

    static const MachineInfo &current();

    /// Puts @p other in the place of the real machine; null brings the real one back. Not owned.
    static void replace(const MachineInfo *other);
};

} // namespace platform
