#pragma once

#include <memory>

#include <QLatin1String>

#include "platform/Firewall.h"

/// True if @p result means success; else it is logged, in hexadecimal, behind @p failure.
bool hasSucceeded(platform::ComResult result, QLatin1String failure);

/// Null without memory for it, which is logged behind @p failure.
std::unique_ptr<platform::FirewallText>
makeFirewallText(const QString &text,
                 QLatin1String failure = QLatin1String("SysAllocString failed: "));

/// COM on the calling thread, for as long as it lives. Objects of COM must go before it.
class ComThread
{
public:
    ComThread();
    ~ComThread();
    ComThread(const ComThread &) = delete;
    ComThread &operator=(const ComThread &) = delete;

    /// A thread that somebody else has initialised in another way is as good. A failure is logged.
    bool isUsable() const;

private:
    const platform::ComResult m_result;
};

/// The newer interface of the firewall, for one operation.
class FirewallPolicySession
{
public:
    /// False if it can't be had, which is logged. Nothing else may be called then.
    [[nodiscard]] bool open();

    platform::FirewallPolicy &policy() const { return *m_policy; }

private:
    bool createPolicy();

    const ComThread m_thread;
    std::unique_ptr<platform::FirewallPolicy> m_policy;
};

/// The older interface of the firewall, for one operation.
class FirewallProfileSession
{
public:
    /// False if it can't be had, which is logged. Nothing else may be called then.
    [[nodiscard]] bool open();

    platform::FirewallProfile &profile() const { return *m_profile; }

private:
    bool createProfile();

    const ComThread m_thread;
    std::unique_ptr<platform::FirewallManager> m_manager;
    std::unique_ptr<platform::FirewallLocalPolicy> m_localPolicy;
    std::unique_ptr<platform::FirewallProfile> m_profile;
};
