#include "core/repair/RepairDnsTask.h"

#include <QtConcurrent>

#include "core/foundation/MCSettings.h"
#include "core/repair/DnsHelper.h"
#include "core/repair/RandomWait.h"

QString RepairDnsTask::g_default_dns_addr = QStringLiteral("114.114.114.114");

static void replaceNameServer(const QString &address)
{
    DnsHelper helper;
    {
        // A store of our own, for the one of Environment belongs to the main thread and may be gone
        // by now. Qt keeps all stores of a process in step.
        MCSettings settings;
        settings.setValue(QStringLiteral("oldDns"), helper.GetDns());
        settings.save();
    }
    helper.SetDns(address);
}

RepairDnsTask::RepairDnsTask(QObject *parent) : TaskAbstract(parent) {}

void RepairDnsTask::onTaskRun()
{
    setTaskBrief(tr("Start repair dns"));
    setStatus(tr("repair dns to ") + g_default_dns_addr);
    QtConcurrent::run(replaceNameServer, g_default_dns_addr);
    RandomWait::callAfter(this, [this] { emitSucceeded(); });
}
