#include "support/coresupport/QTDes.h"

#include <QStringBuilder>

#include "support/coresupport/Cipher.h"

namespace {

QByteArray libraryKey()
{
    return QByteArray::fromHex("3d8a61f2c4079be55c19e8d036b7428f91a5fe6c20d37b84");
}

} // namespace

bool QTDes::EncryptByteArray(const QByteArray &in, QByteArray &out)
{
    const QByteArray vector = Cipher::randomBytes(Cipher::tripleDesBlockBytes);
    const auto data = Cipher::encryptTripleDesCbc(libraryKey(), vector, in);
    out = data ? vector + *data : QByteArray();
    return data.has_value();
}

bool QTDes::DecryptByteArray(const QByteArray &in, QByteArray &out)
{
    const auto plain = Cipher::decryptTripleDesCbc(
        libraryKey(), in.left(Cipher::tripleDesBlockBytes), in.mid(Cipher::tripleDesBlockBytes));
    out = plain.value_or(QByteArray());
    return plain.has_value();
}
