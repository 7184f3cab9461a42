#include "core/repair/DnsHelper.h"

#include <chrono>

#include <QNetworkInterface>

#include "platform/NameServers.h"

namespace {

constexpr std::chrono::milliseconds longestCommand = std::chrono::seconds(10);

} // namespace

DnsHelper::DnsHelper(QObject *parent) : QObject(parent) {}

bool DnsHelper::SetDns(const QString &dns)
{
    using platform::NameServers;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &each : interfaces) {
        if (each.flags().testFlag(QNetworkInterface::IsRunning))
            NameServers::current().run(NameServers::command(each.humanReadableName(), dns),
                                       longestCommand);
    }
    return true;
}

QString DnsHelper::GetDns()
{
    return platform::NameServers::current().first();
}
