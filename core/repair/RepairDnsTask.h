#pragma once

#include <QString>

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// A repair step that makes a public name server that of every running network interface, and
/// keeps the one found before in the setting "oldDns".
///
/// Main thread only. Succeeds after a short wait and cannot fail: the work goes on behind it on
/// the global thread pool, also after this task or the core has ended, and takes up to ten seconds
/// for each interface. The end of the QCoreApplication waits for it.
class RIVETCORE_EXPORT RepairDnsTask : public TaskAbstract
{
    Q_OBJECT
public:
    explicit RepairDnsTask(QObject *parent = nullptr);

    /// The address that is set. A host may change it before the task starts.
    static QString g_default_dns_addr;

protected:
    void onTaskRun() override;
};
