#pragma once

class QString;

/// Reports what the user does; a part of the host. Main thread.
class IEventReportEx
{
public:
    /// A login was accepted: called with the account id in decimal and "0".
    virtual void ReportEvent(const QString &account, const QString &value) = 0;

protected:
    /// Nobody owns a reporter through this interface.
    ~IEventReportEx() = default;
};
