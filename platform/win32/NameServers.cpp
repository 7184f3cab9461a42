#include "platform/NameServers.h"

#include <winsock2.h>

#include <iphlpapi.h>

#include <vector>

namespace platform {

namespace {

class WindowsNameServers final : public NameServers
{
public:
    QString first() const override
    {
        ULONG sizeBytes = 0;
        if (GetNetworkParams(nullptr, &sizeBytes) != ERROR_BUFFER_OVERFLOW)
            return {};
        // Counted in whole structures, so that the first lies as its fields ask for.
        std::vector<FIXED_INFO> buffer(sizeBytes / sizeof(FIXED_INFO) + 1);
        if (GetNetworkParams(buffer.data(), &sizeBytes) != ERROR_SUCCESS)
            return {};
        const IP_ADDR_STRING *server = &buffer.front().DnsServerList;
        while (server && server->IpAddress.String[0] == '\0')
            server = server->Next;
        return server ? QString::fromLatin1(server->IpAddress.String) : QString();
    }
};

} // namespace

const NameServers &NameServers::ofSystem()
{
    static const WindowsNameServers servers;
    return servers;
}

QString NameServers::commandTemplate()
{
    return QStringLiteral("netsh interface ip set dns name=\"%1\" source=static addr=%2");
}

} // namespace platform
