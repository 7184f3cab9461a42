#include "support/transferservice/FileDigest.h"

namespace {

constexpr qint64 pieceBytes = 1024 * 1024;

struct Algorithm
{
    const char *name;
    QCryptographicHash::Algorithm hash;
};

/// Strongest first.
constexpr Algorithm algorithms[] = {
    {"sha-512", QCryptographicHash::Sha512},
    {"sha-256", QCryptographicHash::Sha256},
    {"md5", QCryptographicHash::Md5},
};

QCryptographicHash::Algorithm hashOf(const QByteArray &name)
{
    for (const Algorithm &algorithm : algorithms) {
        if (name == algorithm.name)
            return algorithm.hash;
    }
    return QCryptographicHash::Sha256;
}

} // namespace

FileDigest::FileDigest(const QString &path, const AnnouncedDigest &digest)
    : m_file(path), m_hash(hashOf(digest.algorithm)), m_expected(digest.base64)
{
}

void FileDigest::start()
{
    if (m_file.open(QIODevice::ReadOnly))
        addPiece();
    else
        Q_EMIT compared(false);
}

void FileDigest::addPiece()
{
    const QByteArray piece = m_file.read(pieceBytes);
    if (piece.isEmpty()) {
        const bool isEqual =
            m_file.error() == QFileDevice::NoError && m_hash.result().toBase64() == m_expected;
        m_file.close();
        Q_EMIT compared(isEqual);
        return;
    }
    m_hash.addData(piece);
    QMetaObject::invokeMethod(this, &FileDigest::addPiece, Qt::QueuedConnection);
}

AnnouncedDigest strongestDigest(const QByteArray &headerValue)
{
    for (const Algorithm &algorithm : algorithms) {
        const QByteArray prefix = QByteArray(algorithm.name) + '=';
        for (QByteArray member : headerValue.split(',')) {
            member = member.trimmed();
            if (!member.toLower().startsWith(prefix))
                continue;
            member.remove(0, prefix.size());
            // The newer headers put colons around the value.
            if (member.startsWith(':') && member.endsWith(':'))
                member = member.mid(1, member.size() - 2);
            return {algorithm.name, member};
        }
    }
    return {};
}
