#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

/// The names of archive entries: what their bytes mean, and which are refused. The rules are the
/// same on every system, so that an archive that unpacks on one unpacks on all.
namespace archivekit {

enum class NameCharset {
    Utf8,    ///< the archive says so
    Unknown, ///< the archive says nothing: UTF-8 if the bytes can be that, else GBK, else CP437
};

/// The name that the bytes @p raw of an entry stand for; nothing if they are not what the archive
/// says they are.
[[nodiscard]] std::optional<QString> decodeName(const QByteArray &raw, NameCharset charset);

enum class NameFault {
    None,
    Empty,
    Absolute,
    ClimbsOut,
    Backslash,
    Colon,
    ForbiddenCharacter,
    EmptyComponent,
    LongComponent,
    TrailingDotOrBlank,
    DeviceName,
};

/// What is wrong with the relative path @p path, whose components stand between slashes. It bears
/// no slash at its end.
[[nodiscard]] NameFault faultOf(const QString &path);

/// The fault in words, for the log.
QString textOf(NameFault fault);

/// @p name as it may stand on a line of the log: without control characters.
QString printable(QString name);

} // namespace archivekit
