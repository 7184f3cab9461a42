#pragma once

#include <optional>

#include <QString>

/// What a record says of one file in a deploy folder. Any thread.
namespace DeployedFile {

/// The MD5 of no data, which also stands for a file that could not be read.
extern const char md5OfNothing[];

/// The MD5 of the whole file in lower-case hexadecimal; nothing if it can't be read.
[[nodiscard]] std::optional<QString> md5(const QString &path);

/// True if the recorded @p name can only lead to what is below its folder: it is relative and does
/// not climb.
[[nodiscard]] bool isBelow(const QString &name);

/// True if the recorded @p name is below @p folder and no link stands on the way to it, so that it
/// may be removed.
[[nodiscard]] bool isRemovable(const QString &folder, const QString &name);

} // namespace DeployedFile
