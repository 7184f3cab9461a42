#include "platform/Firewall.h"

#include <windows.h>

#include <netfw.h>

#include "platform/win32/ComObject.h"

namespace platform {

namespace {

class Text final : public FirewallText
{
public:
    explicit Text(const QString &text)
        : m_text(SysAllocStringLen(reinterpret_cast<const OLECHAR *>(text.utf16()),
                                   static_cast<UINT>(text.size())))
    {
    }
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
    ~Text() override { SysFreeString(m_text); }

    BSTR get() const { return m_text; }

private:
    const BSTR m_text;
};

/// Every text that comes in was made by makeText() below.
BSTR raw(const FirewallText &text)
{
    return static_cast<const Text &>(text).get();
}

constexpr VARIANT_BOOL variantBool(bool value)
{
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

class Rule final : public FirewallRule
{
public:
    using Interface = INetFwRule;
    explicit Rule(ComObject<INetFwRule> rule) : m_rule(std::move(rule)) {}

    ComResult putName(const FirewallText &name) override
    {
        return resultOf(m_rule->put_Name(raw(name)));
    }
    ComResult putDescription(const FirewallText &description) override
    {
        return resultOf(m_rule->put_Description(raw(description)));
    }
    ComResult putApplicationName(const FirewallText &path) override
    {
        return resultOf(m_rule->put_ApplicationName(raw(path)));
    }
    ComResult putProtocol(int protocol) override
    {
        return resultOf(m_rule->put_Protocol(protocol));
    }
    ComResult putAction(int action) override
    {
        return resultOf(m_rule->put_Action(static_cast<NET_FW_ACTION>(action)));
    }
    ComResult putEnabled(bool enabled) override
    {
        return resultOf(m_rule->put_Enabled(variantBool(enabled)));
    }
    INetFwRule *get() const { return m_rule.get(); }

private:
    const ComObject<INetFwRule> m_rule;
};

class Program final : public FirewallProgram
{
public:
    using Interface = INetFwAuthorizedApplication;
    explicit Program(ComObject<INetFwAuthorizedApplication> program) : m_program(std::move(program))
    {
    }

    ComResult putProcessImageFileName(const FirewallText &path) override
    {
        return resultOf(m_program->put_ProcessImageFileName(raw(path)));
    }
    ComResult putName(const FirewallText &name) override
    {
        return resultOf(m_program->put_Name(raw(name)));
    }
    INetFwAuthorizedApplication *get() const { return m_program.get(); }

private:
    const ComObject<INetFwAuthorizedApplication> m_program;
};

/// @p Member is the wrapper of what the collection holds.
template <typename Collection, typename Member, typename Entry>
class Entries final : public FirewallEntries<Entry>
{
public:
    explicit Entries(ComObject<Collection> entries) : m_entries(std::move(entries)) {}

    ComResult item(const FirewallText &key) override
    {
        typename Member::Interface *pointer = nullptr;
        const HRESULT result = m_entries->Item(raw(key), &pointer);
        const ComObject<typename Member::Interface> owned(pointer);
        return resultOf(result);
    }
    ComResult remove(const FirewallText &key) override
    {
        return resultOf(m_entries->Remove(raw(key)));
    }
    ComResult add(Entry &entry) override
    {
        return resultOf(m_entries->Add(static_cast<Member &>(entry).get()));
    }

private:
    const ComObject<Collection> m_entries;
};

using Rules = Entries<INetFwRules, Rule, FirewallRule>;
using Programs = Entries<INetFwAuthorizedApplications, Program, FirewallProgram>;

class Policy final : public FirewallPolicy
{
public:
    explicit Policy(ComObject<INetFwPolicy2> policy) : m_policy(std::move(policy)) {}

    ComResult getFirewallEnabled(int profileType, bool &enabled) override
    {
        VARIANT_BOOL value = VARIANT_FALSE;
        const HRESULT result =
            m_policy->get_FirewallEnabled(static_cast<NET_FW_PROFILE_TYPE2>(profileType), &value);
        enabled = value != VARIANT_FALSE;
        return resultOf(result);
    }
    ComResult putFirewallEnabled(int profileType, bool enabled) override
    {
        return resultOf(m_policy->put_FirewallEnabled(
            static_cast<NET_FW_PROFILE_TYPE2>(profileType), variantBool(enabled)));
    }
    ComResult getRules(std::unique_ptr<FirewallRules> &rules) override
    {
        return fetch<Rules, INetFwRules>(
            rules, [this](INetFwRules **pointer) { return m_policy->get_Rules(pointer); });
    }

private:
    const ComObject<INetFwPolicy2> m_policy;
};

class Profile final : public FirewallProfile
{
public:
    explicit Profile(ComObject<INetFwProfile> profile) : m_profile(std::move(profile)) {}

    ComResult getFirewallEnabled(bool &enabled) override
    {
        VARIANT_BOOL value = VARIANT_FALSE;
        const HRESULT result = m_profile->get_FirewallEnabled(&value);
        enabled = value != VARIANT_FALSE;
        return resultOf(result);
    }
    ComResult putFirewallEnabled(bool enabled) override
    {
        return resultOf(m_profile->put_FirewallEnabled(variantBool(enabled)));
    }
    ComResult getAuthorizedApplications(std::unique_ptr<FirewallPrograms> &programs) override
    {
        return fetch<Programs, INetFwAuthorizedApplications>(
            programs, [this](INetFwAuthorizedApplications **pointer) {
                return m_profile->get_AuthorizedApplications(pointer);
            });
    }

private:
    const ComObject<INetFwProfile> m_profile;
};

class LocalPolicy final : public FirewallLocalPolicy
{
public:
    explicit LocalPolicy(ComObject<INetFwPolicy> policy) : m_policy(std::move(policy)) {}

    ComResult getCurrentProfile(std::unique_ptr<FirewallProfile> &profile) override
    {
        return fetch<Profile, INetFwProfile>(profile, [this](INetFwProfile **pointer) {
            return m_policy->get_CurrentProfile(pointer);
        });
    }

private:
    const ComObject<INetFwPolicy> m_policy;
};

class Manager final : public FirewallManager
{
public:
    explicit Manager(ComObject<INetFwMgr> manager) : m_manager(std::move(manager)) {}

    ComResult getLocalPolicy(std::unique_ptr<FirewallLocalPolicy> &policy) override
    {
        return fetch<LocalPolicy, INetFwPolicy>(
            policy, [this](INetFwPolicy **pointer) { return m_manager->get_LocalPolicy(pointer); });
    }

private:
    const ComObject<INetFwMgr> m_manager;
};

class WindowsFirewall final : public Firewall
{
public:
    SystemVersion systemVersion() const override
    {
        OSVERSIONINFOEXW info{};
        info.dwOSVersionInfoSize = sizeof info;
        if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW *>(&info)))
            return {};
        return {info.dwMajorVersion, info.dwMinorVersion, info.wServicePackMajor};
    }
    ComResult enterThread() const override
    {
        return resultOf(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    }
    void leaveThread() const override { CoUninitialize(); }

    std::unique_ptr<FirewallText> makeText(const QString &text) const override
    {
        auto made = std::make_unique<Text>(text);
        if (!made->get())
            return nullptr;
        return made;
    }

    ComResult createPolicy(std::unique_ptr<FirewallPolicy> &policy) const override
    {
        return create<Policy, NetFwPolicy2, INetFwPolicy2>(policy);
    }
    ComResult createRule(std::unique_ptr<FirewallRule> &rule) const override
    {
        return create<Rule, NetFwRule, INetFwRule>(rule);
    }
    ComResult createManager(std::unique_ptr<FirewallManager> &manager) const override
    {
        return create<Manager, NetFwMgr, INetFwMgr>(manager);
    }
    ComResult createProgram(std::unique_ptr<FirewallProgram> &program) const override
    {
        return create<Program, NetFwAuthorizedApplication, INetFwAuthorizedApplication>(program);
    }
};

} // namespace

const Firewall &Firewall::ofSystem()
{
    static const WindowsFirewall firewall;
    return firewall;
}

} // namespace platform
