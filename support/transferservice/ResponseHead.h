#pragma once

#include <chrono>
#include <optional>

#include "support/transferservice/DownloadRecord.h"

class QNetworkReply;

/// What the status line and the headers of an answer mean for a download.
struct ResponseHead
{
    int status = 0;        ///< 0: no answer of an HTTP server
    qint64 firstByte = 0;  ///< of the body within the file; -1 when a 206 does not tell it
    DownloadRecord record; ///< about the whole file, also in an answer with a part of it
    std::optional<std::chrono::milliseconds> retryAfter;
};

/// True once the final answer's head is there, not just that of a redirection.
bool hasFinalHead(const QNetworkReply &reply);

ResponseHead readResponseHead(const QNetworkReply &reply);

/// True for a status after which the same request may succeed later.
bool isPassingStatus(int status);

/// How an exchange without a usable answer ended.
enum class ExchangeFault {
    Passing, ///< not reached, dropped or stalled: may go away
    Lasting, ///< will happen again: bad URL, refused certificate, refused redirection
};

ExchangeFault faultOf(const QNetworkReply &reply);
