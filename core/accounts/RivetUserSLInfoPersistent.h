#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

#include "base/RivetCoreExport.h"

struct RivetUserSecurityLoginInfo;

/// The file of one user's record: the payload of a Pickle, enciphered so that it opens on this
/// machine only. Any thread; blocks.
class RIVETCORE_EXPORT RivetUserSLInfoPersistent
{
public:
    RivetUserSLInfoPersistent() = delete;

    /// False if the file can't be read, is of another machine or has been changed.
    static bool ReadFromFile(const QString &path, RivetUserSecurityLoginInfo &info);
    /// Replaces the file, which its owner alone can read; on false it is as it was.
    static bool WriteToFile(const QString &path, const RivetUserSecurityLoginInfo &info);

    /// What WriteToFile() puts into the file; nothing, with a line on the log, if it can't be
    /// enciphered.
    [[nodiscard]] static std::optional<QByteArray> Seal(const RivetUserSecurityLoginInfo &info);
};
