#include "base/PickleIterator.h"

#include <algorithm>

#include <QtEndian>

#include "base/Pickle.h"

PickleIterator::PickleIterator(const Pickle &pickle)
    : m_payload(pickle.payload()), m_endIndex(pickle.payloadSize())
{
}

bool PickleIterator::ReadBool(bool *result)
{
    // A stored flag may have lost the rest of its slot; its first byte is enough.
    const char *const first = take(1);
    if (first)
        *result = *first != 0;
    return first;
}

bool PickleIterator::ReadInt(int *result)
{
    const char *const field = take(sizeof(qint32));
    if (field)
        *result = qFromLittleEndian<qint32>(field);
    return field;
}

bool PickleIterator::ReadUInt64(quint64 *result)
{
    const char *const field = take(sizeof(quint64));
    if (field)
        *result = qFromLittleEndian<quint64>(field);
    return field;
}

bool PickleIterator::ReadData(const char **data, int *length)
{
    int announced = 0;
    if (!ReadInt(&announced) || !ReadBytes(data, announced))
        return false;
    *length = announced;
    return true;
}

bool PickleIterator::ReadBytes(const char **data, int length)
{
    if (length < 0) {
        m_readIndex = m_endIndex;
        return false;
    }
    const char *const bytes = take(static_cast<std::size_t>(length));
    if (!bytes && length > 0)
        return false;
    *data = bytes;
    return true;
}

/// The next @p length bytes; the iterator moves on to the next multiple of 4 behind them. Null,
/// at the end, if there are not so many.
const char *PickleIterator::take(std::size_t length)
{
    if (length > m_endIndex - m_readIndex) {
        m_readIndex = m_endIndex;
        return nullptr;
    }
    const char *const field = m_payload + m_readIndex;
    m_readIndex = std::min(m_endIndex, m_readIndex + (length + 3) / 4 * 4);
    return field;
}
