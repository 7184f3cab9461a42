#include "platform/Firewall.h"

namespace platform {

namespace {

/// Not there. Nobody gets past enterThread().
class NoFirewall final : public Firewall
{
public:
    SystemVersion systemVersion() const override { return {}; }
    ComResult enterThread() const override { return com::notImplemented; }
    void leaveThread() const override {}
    std::unique_ptr<FirewallText> makeText(const QString &) const override
    {
        return std::make_unique<FirewallText>();
    }
    ComResult createPolicy(std::unique_ptr<FirewallPolicy> &) const override
    {
        return com::notImplemented;
    }
    ComResult createRule(std::unique_ptr<FirewallRule> &) const override
    {
        return com::notImplemented;
    }
    ComResult createManager(std::unique_ptr<FirewallManager> &) const override
    {
        return com::notImplemented;
    }
    ComResult createProgram(std::unique_ptr<FirewallProgram> &) const override
    {
        return com::notImplemented;
    }
};

} // namespace

const Firewall &Firewall::ofSystem()
{
    static const NoFirewall firewall;
    return firewall;
}

} // namespace platform
