#pragma once

class QNetworkReply;

/// Gets the end of an HTTP request.
class IHttpRequestSink
{
public:
    /// Called once when the request has ended, on the thread that started it. The sink reads error
    /// state and body of @p reply and does not delete it; it lives until control is
    /// back in the event loop. It is never null.
    virtual void httpRequestFinished(unsigned short requestId, QNetworkReply *reply) = 0;

protected:
    ~IHttpRequestSink() = default;
};
