#include "support/transferservice/RetrySchedule.h"

#include <algorithm>

using std::chrono::milliseconds;

void RetrySchedule::noteDrop()
{
    ++m_drops;
    m_mostBytes = 0;
}

std::optional<milliseconds> RetrySchedule::nextPause(qint64 partBytes,
                                                     std::optional<milliseconds> retryAfter)
{
    m_fruitlessTries = partBytes > m_mostBytes ? 0 : m_fruitlessTries + 1;
    m_mostBytes = std::max(m_mostBytes, partBytes);
    if (m_fruitlessTries >= m_timing.fruitlessTries || m_drops >= m_timing.fruitlessTries)
        return std::nullopt;
    if (retryAfter.value_or(milliseconds::zero()) > m_timing.longestRetryAfter)
        return std::nullopt;
    const int doublings = std::max(0, std::max(m_fruitlessTries, m_drops) - 1);
    const milliseconds grown = m_timing.firstPause * (1LL << std::min(doublings, 20));
    const milliseconds pause = std::min(grown, m_timing.longestPause);
    return std::max(pause, retryAfter.value_or(milliseconds::zero()));
}
