#include "core/launch/ReadyForSelectLine.h"

#include <QRandomGenerator>
#include <QStringList>

#include "core/launch/OrAuthServerInstanceInfo.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr quint16 defaultPort = 25565;

ServerAddress addressIn(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (parts.size() < 2)
        return {text, defaultPort};
    const auto port = static_cast<quint16>(parts[1].toInt());
    return {parts[0], port == 0 ? defaultPort : port};
}

} // namespace

ReadyForSelectLine::ReadyForSelectLine(std::shared_ptr<OrAuthServerInstanceInfo> info,
                                       std::weak_ptr<MCInstanceObj> instance, IResManager *manager,
                                       QObject *parent)
    : MinecraftLaunchStep(std::move(instance), manager, parent), m_info(std::move(info))
{
}

ReadyForSelectLine::~ReadyForSelectLine() = default;

void ReadyForSelectLine::setServerAddressList(QList<QString> addresses)
{
    m_addresses.clear();
    for (const QString &address : qAsConst(addresses)) {
        if (address.isEmpty())
            Log::warning(QStringLiteral("server address is empty"));
        else
            m_addresses += addressIn(address);
    }
}

void ReadyForSelectLine::onTaskRun()
{
    MinecraftLaunchStep::onTaskRun();
    if (!announce(tr("select the line"), tr("selecting the line, please wait for a moment...")))
        return;
    ServerAddress address;
    if (m_addresses.isEmpty()) {
        Log::critical(QStringLiteral("no one server address can be selected"));
    } else if (!m_info) {
        Log::critical(QStringLiteral("null pointer"));
    } else if (selectLine(m_addresses, address)) {
        m_info->host = address.host;
        m_info->port = address.port;
    }
    getReadyForTask();
}

bool ReadyForSelectLine::selectLine(QList<ServerAddress> list, ServerAddress &out)
{
    if (list.isEmpty())
        return false;
    out = list[QRandomGenerator::global()->bounded(list.size())];
    return true;
}
