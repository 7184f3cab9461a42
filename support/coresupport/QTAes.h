#pragma once

#include <QByteArray>

#include "support/coresupport/CoreSupportExport.h"

/// Records that open only on the machine that wrote them: AES-256-GCM under a key made of the
/// library's own key and the identity of the processor. A record is the nonce of 12 bytes, the
/// cipher text and the tag of 16 bytes. Any thread.
class CORESUPPORT_EXPORT QTAes
{
public:
    QTAes() = delete;

    /// False, with an empty @p out, if the cipher cannot be had.
    static bool EncryptByteArrayByCpuid(const QByteArray &in, QByteArray &out);
    /// False, with an empty @p out, if the record is of another machine or has been changed.
    static bool DecryptByteArrayByCpuid(const QByteArray &in, QByteArray &out);
};
