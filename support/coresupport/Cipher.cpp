#include "support/coresupport/Cipher.h"

#include <cstdarg>
#include <memory>

#include <gcrypt.h>

#include <QStringBuilder>

namespace Cipher {

namespace {

struct CloseCipher
{
    void operator()(gcry_cipher_hd_t handle) const { gcry_cipher_close(handle); }
};
using Handle = std::unique_ptr<gcry_cipher_handle, CloseCipher>;

void initializeLibrary()
{
    static const bool done = [] {
        gcry_check_version(nullptr);
        // Its advice to developers would stand on the standard error output of a host.
        gcry_set_log_handler([](void *, int, const char *, va_list) {}, nullptr);
        gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
        gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
        return true;
    }();
    Q_UNUSED(done)
}

/// A cipher with key and vector set; null if their lengths do not fit it.
Handle openCipher(int algorithm, int mode, const QByteArray &key, const QByteArray &vector,
                  int vectorBytes)
{
    initializeLibrary();
    gcry_cipher_hd_t raw = nullptr;
    if (vector.size() != vectorBytes || gcry_cipher_open(&raw, algorithm, mode, 0))
        return nullptr;
    Handle handle(raw);
    if (gcry_cipher_setkey(raw, key.constData(), static_cast<size_t>(key.size())) ||
        gcry_cipher_setiv(raw, vector.constData(), static_cast<size_t>(vector.size())))
        return nullptr;
    return handle;
}

Handle openAes(const QByteArray &key, const QByteArray &nonce)
{
    if (key.size() != aesKeyBytes)
        return nullptr;
    return openCipher(GCRY_CIPHER_AES256, GCRY_CIPHER_MODE_GCM, key, nonce, aesNonceBytes);
}

Handle openTripleDes(const QByteArray &key, const QByteArray &vector)
{
    return openCipher(GCRY_CIPHER_3DES, GCRY_CIPHER_MODE_CBC, key, vector, tripleDesBlockBytes);
}

using CipherCall = gcry_error_t (*)(gcry_cipher_hd_t, void *, size_t, const void *, size_t);

/// Runs @p call over @p data in place.
bool transform(CipherCall call, const Handle &handle, QByteArray &data)
{
    return call(handle.get(), data.data(), static_cast<size_t>(data.size()), nullptr, 0) == 0;
}

bool removePadding(QByteArray &data)
{
    const int count = data.isEmpty() ? 0 : static_cast<uchar>(data.back());
    if (count < 1 || count > tripleDesBlockBytes || count > data.size())
        return false;
    if (data.right(count) != QByteArray(count, static_cast<char>(count)))
        return false;
    data.chop(count);
    return true;
}

} // namespace

std::optional<QByteArray> sealAes256Gcm(const QByteArray &key, const QByteArray &nonce,
                                        const QByteArray &plain)
{
    const Handle handle = openAes(key, nonce);
    QByteArray text = plain;
    QByteArray tag(aesTagBytes, '\0');
    if (!handle || !transform(&gcry_cipher_encrypt, handle, text) ||
        gcry_cipher_gettag(handle.get(), tag.data(), aesTagBytes))
        return std::nullopt;
    return text + tag;
}

std::optional<QByteArray> openAes256Gcm(const QByteArray &key, const QByteArray &nonce,
                                        const QByteArray &sealed)
{
    const Handle handle = openAes(key, nonce);
    if (!handle || sealed.size() < aesTagBytes)
        return std::nullopt;
    QByteArray text = sealed.left(sealed.size() - aesTagBytes);
    const QByteArray tag = sealed.right(aesTagBytes);
    if (!transform(&gcry_cipher_decrypt, handle, text) ||
        gcry_cipher_checktag(handle.get(), tag.constData(), aesTagBytes))
        return std::nullopt;
    return text;
}

std::optional<QByteArray> encryptTripleDesCbc(const QByteArray &key, const QByteArray &vector,
                                              const QByteArray &plain)
{
    const Handle handle = openTripleDes(key, vector);
    const int padding = tripleDesBlockBytes - plain.size() % tripleDesBlockBytes;
    QByteArray data = plain + QByteArray(padding, static_cast<char>(padding));
    if (!handle || !transform(&gcry_cipher_encrypt, handle, data))
        return std::nullopt;
    return data;
}

std::optional<QByteArray> decryptTripleDesCbc(const QByteArray &key, const QByteArray &vector,
                                              const QByteArray &data)
{
    const Handle handle = openTripleDes(key, vector);
    QByteArray plain = data;
    if (!handle || data.size() % tripleDesBlockBytes != 0 ||
        !transform(&gcry_cipher_decrypt, handle, plain) || !removePadding(plain))
        return std::nullopt;
    return plain;
}

QByteArray randomBytes(int count)
{
    initializeLibrary();
    QByteArray bytes(count, Qt::Uninitialized);
    gcry_randomize(bytes.data(), static_cast<size_t>(count), GCRY_STRONG_RANDOM);
    return bytes;
}

} // namespace Cipher
