#include "core/repair/FirewallSession.h"

#include "support/jsonfskit/Log.h"

using platform::Firewall;

bool hasSucceeded(platform::ComResult result, QLatin1String failure)
{
    if (!platform::com::hasFailed(result))
        return true;
    Log::debug(failure + QLatin1String("0x") + QString::number(result, 16).toUpper());
    return false;
}

std::unique_ptr<platform::FirewallText> makeFirewallText(const QString &text, QLatin1String failure)
{
    auto made = Firewall::current().makeText(text);
    if (!made)
        hasSucceeded(platform::com::outOfMemory, failure);
    return made;
}

ComThread::ComThread() : m_result(Firewall::current().enterThread()) {}

ComThread::~ComThread()
{
    if (!platform::com::hasFailed(m_result))
        Firewall::current().leaveThread();
}

bool ComThread::isUsable() const
{
    return m_result == platform::com::changedMode ||
           hasSucceeded(m_result, QLatin1String("CoInitializeEx failed: "));
}

bool FirewallPolicySession::open()
{
    if (createPolicy())
        return true;
    Log::warning(QStringLiteral("init INetFwPolicy2 failed"));
    return false;
}

bool FirewallPolicySession::createPolicy()
{
    return m_thread.isUsable() &&
           hasSucceeded(Firewall::current().createPolicy(m_policy),
                        QLatin1String("CoCreateInstance for INetFwPolicy2 failed: "));
}

bool FirewallProfileSession::open()
{
    if (createProfile())
        return true;
    Log::warning(QStringLiteral("get INetFwProfile pointer failed"));
    return false;
}

bool FirewallProfileSession::createProfile()
{
    return m_thread.isUsable() &&
           hasSucceeded(Firewall::current().createManager(m_manager),
                        QLatin1String("CoCreateInstance failed: ")) &&
           hasSucceeded(m_manager->getLocalPolicy(m_localPolicy),
                        QLatin1String("get_LocalPolicy failed: ")) &&
           hasSucceeded(m_localPolicy->getCurrentProfile(m_profile),
                        QLatin1String("get_CurrentProfile failed: "));
}
