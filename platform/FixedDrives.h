#pragma once

#include <QString>
#include <QVector>

#include "platform/RivetPlatformExport.h"

namespace platform {

struct FixedDrive
{
    QString root;                   ///< with its separator behind, such as "C:\"
    quint64 freeBytesAvailable = 0; ///< to this user
};

/// The drives that are built into the machine. Any thread; a drive that sleeps may block the call.
///
/// Tests install a table of their own; the product always sees the real one.
class RIVETPLATFORM_EXPORT FixedDrives
{
public:
    virtual ~FixedDrives();

    /// In the order of their letters, without those whose free space can't be told; empty on a
    /// system without drive letters.
    virtual QVector<FixedDrive> table() const = 0;

    static const FixedDrives &current();

    /// Puts @p other in the place of the real table; null brings the real one back. Not owned.
    static void replace(const FixedDrives *other);

private:
    /// One implementation for each system.
    static const FixedDrives &ofSystem();
};

} // namespace platform
