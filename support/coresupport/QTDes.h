#pragma once

#include <QByteArray>

#include "support/coresupport/CoreSupportExport.h"

/// Files that come with the installation and are not meant to be read by eye: 3DES-CBC under the
/// library's own key, the random vector of 8 bytes in front. Any thread.
class CORESUPPORT_EXPORT QTDes
{
public:
    QTDes() = delete;

    /// For the tool that makes such a file.
    static bool EncryptByteArray(const QByteArray &in, QByteArray &out);
    /// False, with an empty @p out, if the bytes are not of this form.
    static bool DecryptByteArray(const QByteArray &in, QByteArray &out);
};
