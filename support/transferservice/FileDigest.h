#pragma once

#include <QCryptographicHash>
#include <QFile>
#include <QObject>

#include "support/transferservice/DownloadRecord.h"

/// Compares a file with an announced digest, one piece per turn of the event loop, so that the
/// thread stays responsive. Deleting it ends the work silently.
class FileDigest : public QObject
{
    Q_OBJECT
public:
    /// @p digest names one of the known algorithms.
    FileDigest(const QString &path, const AnnouncedDigest &digest);

    void start();

Q_SIGNALS:
    void compared(bool isEqual);

private:
    void addPiece();

    QFile m_file;
    QCryptographicHash m_hash;
    const QByteArray m_expected;
};

/// Picks the strongest digest that we know out of the value of a "Digest", "Repr-Digest" or
/// "Content-Digest" header.
AnnouncedDigest strongestDigest(const QByteArray &headerValue);
