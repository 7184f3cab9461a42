#pragma once

#include <cstddef>

#include <QtGlobal>

#include "base/RivetCoreExport.h"

class Pickle;

/// Reads the fields of a Pickle in the order in which they were written.
///
/// The Pickle must outlive the iterator and stay unchanged meanwhile. A read past the end moves the
/// iterator to the end and returns false; the result is then left as it was.
class RIVETCORE_EXPORT PickleIterator
{
public:
    explicit PickleIterator(const Pickle &pickle);

    /// Looks at the first byte of the field's four; false only at the end of the payload.
    bool ReadBool(bool *result);
    bool ReadInt(int *result);
    bool ReadUInt64(quint64 *result);
    /// @p data points into the Pickle. False as well on a length that is negative or greater than
    /// what is left.
    bool ReadData(const char **data, int *length);
    bool ReadBytes(const char **data, int length);

private:
    const char *take(std::size_t length);

    const char *m_payload;
    std::size_t m_readIndex = 0;
    std::size_t m_endIndex;
};
