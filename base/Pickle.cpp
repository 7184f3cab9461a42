#include "base/Pickle.h"

#include <algorithm>
#include <cstring>

#include <QtEndian>

namespace {

constexpr std::size_t capacityUnit = 64;

constexpr std::size_t roundUp(std::size_t value, std::size_t unit)
{
    return (value + unit - 1) / unit * unit;
}

} // namespace

Pickle::Pickle() : m_buffer(capacityUnit, '\0') {}

bool Pickle::WriteBool(bool value)
{
    return WriteInt(value ? 1 : 0);
}

bool Pickle::WriteInt(int value)
{
    const qint32 little = qToLittleEndian(static_cast<qint32>(value));
    return WriteBytes(&little, sizeof little);
}

bool Pickle::WriteUInt64(quint64 value)
{
    const quint64 little = qToLittleEndian(value);
    return WriteBytes(&little, sizeof little);
}

bool Pickle::WriteData(const char *data, int length)
{
    return length >= 0 && WriteInt(length) && WriteBytes(data, length);
}

bool Pickle::WriteBytes(const void *data, int length)
{
    if (length < 0)
        return false;
    if (length > 0)
        std::memcpy(grow(static_cast<std::size_t>(length)), data, static_cast<std::size_t>(length));
    return true;
}

const char *Pickle::payload() const
{
    return m_buffer.empty() ? nullptr : m_buffer.data() + headerBytes;
}

std::size_t Pickle::payloadSize() const
{
    return m_buffer.empty() ? 0 : qFromLittleEndian<quint32>(m_buffer.data());
}

std::size_t Pickle::capacity() const
{
    return m_buffer.size();
}

/// Adds a field of @p length bytes, padded with zero bytes, and returns where it starts.
char *Pickle::grow(std::size_t length)
{
    const std::size_t start = headerBytes + payloadSize();
    const std::size_t end = start + roundUp(length, 4);
    if (end > m_buffer.size())
        m_buffer.resize(roundUp(std::max(end, 2 * m_buffer.size()), capacityUnit), '\0');
    qToLittleEndian(static_cast<quint32>(end - headerBytes), m_buffer.data());
    return m_buffer.data() + start;
}
