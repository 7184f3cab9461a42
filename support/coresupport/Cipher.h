#pragma once

#include <optional>

#include <QByteArray>

#include "support/coresupport/CoreSupportExport.h"

/// The two ciphers of the core. Nothing comes back on a key or vector of the wrong length and on
/// data that is not what the cipher made. Any thread.
namespace Cipher {

constexpr int aesKeyBytes = 32;
constexpr int aesNonceBytes = 12;
constexpr int aesTagBytes = 16;
constexpr int tripleDesBlockBytes = 8;

/// AES-256-GCM (NIST SP 800-38D): the cipher text with the tag of 16 bytes behind it.
[[nodiscard]] CORESUPPORT_EXPORT std::optional<QByteArray>
sealAes256Gcm(const QByteArray &key, const QByteArray &nonce, const QByteArray &plain);
[[nodiscard]] CORESUPPORT_EXPORT std::optional<QByteArray>
openAes256Gcm(const QByteArray &key, const QByteArray &nonce, const QByteArray &sealed);

/// 3DES in CBC mode (NIST SP 800-67), padded to full blocks as PKCS #7 tells.
[[nodiscard]] CORESUPPORT_EXPORT std::optional<QByteArray>
encryptTripleDesCbc(const QByteArray &key, const QByteArray &vector, const QByteArray &plain);
[[nodiscard]] CORESUPPORT_EXPORT std::optional<QByteArray>
decryptTripleDesCbc(const QByteArray &key, const QByteArray &vector, const QByteArray &data);

/// Unpredictable bytes of the system, for nonces and vectors.
[[nodiscard]] CORESUPPORT_EXPORT QByteArray randomBytes(int count);

} // namespace Cipher
