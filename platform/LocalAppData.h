#pragma once

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// Where the programs of this user keep data that stays on this machine. Any thread.
///
/// Tests install a folder of their own; the product always sees the real one.
class RIVETPLATFORM_EXPORT LocalAppData
{
public:
    virtual ~LocalAppData();

    /// Absolute; empty if the system can't tell. Need not exist yet.
    virtual QString directory() const = 0;

    static const LocalAppData &current();

    /// Puts @p other in the place of the real folder; null brings the real one back. Not owned.
    static void replace(const LocalAppData *other);

private:
    /// One implementation for each system.
    static const LocalAppData &ofSystem();
};

} // namespace platform
