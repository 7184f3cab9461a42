#pragma once

#include <cstddef>
#include <vector>

#include <QtGlobal>

#include "base/RivetCoreExport.h"

/// The byte layout of one stored record, growing as fields are written.
///
/// The buffer is a header of 4 bytes, the payload's size as a 32-bit little-endian number, and the
/// payload, whose fields each start on a multiple of 4. PickleIterator reads it. Not thread-safe.
class RIVETCORE_EXPORT Pickle
{
public:
    static constexpr std::size_t headerBytes = 4;

    Pickle();

    /// 4 bytes: the value as 0 or 1.
    bool WriteBool(bool value);
    /// 4 bytes, little-endian.
    bool WriteInt(int value);
    /// 8 bytes, little-endian.
    bool WriteUInt64(quint64 value);
    /// The length in 4 bytes, the bytes, zero bytes up to a multiple of 4. A negative length writes
    /// nothing and returns false.
    bool WriteData(const char *data, int length);
    /// As WriteData, without the length field.
    bool WriteBytes(const void *data, int length);

    /// The bytes behind the header; null for a Pickle that was moved from. Valid until the next
    /// write.
    const char *payload() const;
    /// What the header says.
    std::size_t payloadSize() const;
    /// Bytes of the whole buffer, header included; a multiple of 64.
    std::size_t capacity() const;

private:
    char *grow(std::size_t length);

    std::vector<char> m_buffer; ///< as large as the capacity, zero behind the payload
};
