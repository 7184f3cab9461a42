#pragma once

class QByteArray;

/// Gets the end of an HTTP request with the outcome already read.
class IHttpRequestSinkEx
{
public:
    /// Called once when the request has ended, on the thread that started it. @p error is a
    /// QNetworkReply::NetworkError, 0 for success; @p data is the body, empty on an error.
    virtual void httpRequestFinishedEx(unsigned short requestId, int error,
                                       const QByteArray &data) = 0;

protected:
    ~IHttpRequestSinkEx() = default;
};
