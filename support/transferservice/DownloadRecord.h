#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

/// A digest that a server announced for a whole file.
struct AnnouncedDigest
{
    QByteArray algorithm; ///< "sha-256", "sha-512" or "md5"; empty when none was announced
    QByteArray base64;
};

/// What one answer of a server said about a file: enough to resume it and to revalidate it.
struct DownloadRecord
{
    QString url;
    QByteArray etag;
    QByteArray lastModified;
    QByteArray rangeValidator; ///< the value for If-Range; empty: must not be resumed
    qint64 totalBytes = -1;    ///< -1: the server did not say
    AnnouncedDigest digest;
};

/// The content of a state file: JSON with the objects "file" and "part", each optional.
struct DownloadState
{
    std::optional<DownloadRecord> file; ///< about the complete file
    std::optional<DownloadRecord> part; ///< about the part file
};

/// What cannot be read counts as not there.
DownloadState readDownloadState(const QString &path);
[[nodiscard]] bool writeDownloadState(const QString &path, const DownloadState &state);
