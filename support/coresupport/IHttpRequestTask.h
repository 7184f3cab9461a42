#pragma once

#include <memory>

#include "support/coresupport/CoreSupportExport.h"

class IHttpRequestSinkEx;
class QNetworkAccessManager;

/// One HTTP GET as its users see it.
class CORESUPPORT_EXPORT IHttpRequestTask
{
public:
    virtual ~IHttpRequestTask() = default;

    /// From now on the request reports to @p sink, not owned; with null it reports to nobody.
    virtual void SetSink(IHttpRequestSinkEx *sink) = 0;
    virtual void SetNetworkAccessManager(std::shared_ptr<QNetworkAccessManager> manager) = 0;
    /// Ends a request in flight without a report.
    virtual void Cancel() = 0;
    virtual void Start() = 0;
};
