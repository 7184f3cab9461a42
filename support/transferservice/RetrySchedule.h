#pragma once

#include <chrono>
#include <optional>

#include "support/transferservice/FileDownload.h"

/// Decides after each fault whether and when a transfer is tried again.
///
/// A try that brought new bytes resets the count of fruitless ones. Bytes that only replace what
/// had been thrown away are not new: a server that never lets a transfer through does not keep it
/// running for ever.
class RetrySchedule
{
public:
    explicit RetrySchedule(const TransferTiming &timing) : m_timing(timing) {}

    /// The part was thrown away; what it held has to come again.
    void noteDrop();
    /// The pause before the next try; nothing when the transfer has to fail. @p partBytes is what
    /// the part holds, @p retryAfter what the server asked for.
    std::optional<std::chrono::milliseconds>
    nextPause(qint64 partBytes, std::optional<std::chrono::milliseconds> retryAfter);

private:
    TransferTiming m_timing;
    qint64 m_mostBytes = 0; ///< what the part held at best since it was last thrown away
    int m_fruitlessTries = 0;
    int m_drops = 0;
};
