#include "support/coresupport/QTAes.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QStringBuilder>

#include "platform/MachineInfo.h"
#include "support/coresupport/Cipher.h"

namespace {

QByteArray machineKey()
{
    static const QByteArray libraryKey =
        QByteArray::fromHex("8f1c5be2743a90d6c8e14b2f7a05d39961ce83f40b7d2a5e9034c7186fbd52ae");
    return QMessageAuthenticationCode::hash(platform::MachineInfo::current().processorIdentity(),
                                            libraryKey, QCryptographicHash::Sha256);
}

} // namespace

bool QTAes::EncryptByteArrayByCpuid(const QByteArray &in, QByteArray &out)
{
    const QByteArray nonce = Cipher::randomBytes(Cipher::aesNonceBytes);
    const auto sealed = Cipher::sealAes256Gcm(machineKey(), nonce, in);
    out = sealed ? nonce + *sealed : QByteArray();
    return sealed.has_value();
}

bool QTAes::DecryptByteArrayByCpuid(const QByteArray &in, QByteArray &out)
{
    const auto plain = Cipher::openAes256Gcm(machineKey(), in.left(Cipher::aesNonceBytes),
                                             in.mid(Cipher::aesNonceBytes));
    out = plain.value_or(QByteArray());
    return plain.has_value();
}
