#pragma once

#include <memory>

#include <QString>

#include "platform/RivetPlatformExport.h"

namespace platform {

/// Result of a call as COM codes it. Several codes mean success.
using ComResult = quint32;

namespace com {

constexpr ComResult ok = 0;
constexpr ComResult notImplemented = 0x80004001;
constexpr ComResult changedMode = 0x80010106; ///< the thread is initialised in another mode
constexpr ComResult outOfMemory = 0x8007000E;

constexpr bool hasFailed(ComResult result)
{
    return result >= 0x80000000;
}

} // namespace com

/// A text in the form that the firewall takes.
class FirewallText
{
public:
    virtual ~FirewallText() = default;
};

/// A rule of the newer interface, `INetFwRule`.
class FirewallRule
{
public:
    virtual ~FirewallRule() = default;
    [[nodiscard]] virtual ComResult putName(const FirewallText &name) = 0;
    [[nodiscard]] virtual ComResult putDescription(const FirewallText &description) = 0;
    [[nodiscard]] virtual ComResult putApplicationName(const FirewallText &path) = 0;
    [[nodiscard]] virtual ComResult putProtocol(int protocol) = 0;
    [[nodiscard]] virtual ComResult putAction(int action) = 0;
    [[nodiscard]] virtual ComResult putEnabled(bool enabled) = 0;
};

/// A program of the older interface, `INetFwAuthorizedApplication`.
class FirewallProgram
{
public:
    virtual ~FirewallProgram() = default;
    [[nodiscard]] virtual ComResult putProcessImageFileName(const FirewallText &path) = 0;
    [[nodiscard]] virtual ComResult putName(const FirewallText &name) = 0;
};

/// What the firewall lets through: `INetFwRules`, whose key is the name of the rule, or
/// `INetFwAuthorizedApplications`, whose key is the path of the program.
template <typename Entry>
class FirewallEntries
{
public:
    virtual ~FirewallEntries() = default;
    /// Succeeds if there is an entry of that key.
    [[nodiscard]] virtual ComResult item(const FirewallText &key) = 0;
    [[nodiscard]] virtual ComResult remove(const FirewallText &key) = 0;
    /// @p entry was made by the same implementation.
    [[nodiscard]] virtual ComResult add(Entry &entry) = 0;
};

using FirewallRules = FirewallEntries<FirewallRule>;
using FirewallPrograms = FirewallEntries<FirewallProgram>;

/// The newer interface, `INetFwPolicy2`.
class FirewallPolicy
{
public:
    virtual ~FirewallPolicy() = default;
    [[nodiscard]] virtual ComResult getFirewallEnabled(int profileType, bool &enabled) = 0;
    [[nodiscard]] virtual ComResult putFirewallEnabled(int profileType, bool enabled) = 0;
    [[nodiscard]] virtual ComResult getRules(std::unique_ptr<FirewallRules> &rules) = 0;
};

/// `INetFwProfile`.
class FirewallProfile
{
public:
    virtual ~FirewallProfile() = default;
    [[nodiscard]] virtual ComResult getFirewallEnabled(bool &enabled) = 0;
    [[nodiscard]] virtual ComResult putFirewallEnabled(bool enabled) = 0;
    [[nodiscard]] virtual ComResult
    getAuthorizedApplications(std::unique_ptr<FirewallPrograms> &programs) = 0;
};

/// `INetFwPolicy`.
class FirewallLocalPolicy
{
public:
    virtual ~FirewallLocalPolicy() = default;
    [[nodiscard]] virtual ComResult
    getCurrentProfile(std::unique_ptr<FirewallProfile> &profile) = 0;
};

/// The older interface, `INetFwMgr`.
class FirewallManager
{
public:
    virtual ~FirewallManager() = default;
    [[nodiscard]] virtual ComResult
    getLocalPolicy(std::unique_ptr<FirewallLocalPolicy> &policy) = 0;
};

/// The calls by which the core reads and changes the Windows firewall, one for each call of the
/// system. A call that fails leaves the object that it was to give empty; what it gives is
/// released by deleting it, before the thread is left.
///
/// Tests install an implementation of their own; the product always uses the system's. On POSIX
/// every call that can fail answers com::notImplemented.
class RIVETPLATFORM_EXPORT Firewall
{
public:
    struct SystemVersion
    {
        quint32 majorVersion = 0;
        quint32 minorVersion = 0;
        quint32 servicePackMajor = 0;
    };

    virtual ~Firewall();

    /// `GetVersionExW`. All 0 where it can't be told.
    virtual SystemVersion systemVersion() const = 0;

    /// `CoInitializeEx` of the calling thread as an apartment of its own. After success
    /// leaveThread() is due.
    [[nodiscard]] virtual ComResult enterThread() const = 0;
    /// `CoUninitialize`.
    virtual void leaveThread() const = 0;

    /// `SysAllocString`. Null without memory for it.
    [[nodiscard]] virtual std::unique_ptr<FirewallText> makeText(const QString &text) const = 0;

    // `CoCreateInstance` of each class.
    [[nodiscard]] virtual ComResult createPolicy(std::unique_ptr<FirewallPolicy> &policy) const = 0;
    [[nodiscard]] virtual ComResult createRule(std::unique_ptr<FirewallRule> &rule) const = 0;
    [[nodiscard]] virtual ComResult
    createManager(std::unique_ptr<FirewallManager> &manager) const = 0;
    [[nodiscard]] virtual ComResult
    createProgram(std::unique_ptr<FirewallProgram> &program) const = 0;

    static const Firewall &current();

    /// Puts @p other in the place of the system; null brings the system back. Not owned.
    static void replace(const Firewall *other);

private:
    /// One implementation for each system.
    static const Firewall &ofSystem();
};

} // namespace platform
