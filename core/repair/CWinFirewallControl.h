#pragma once

#include <QString>
#include <QVector>

#include "base/RivetCoreExport.h"

/// The Windows versions that the firewall tells apart. From 3 on its newer interface is used, by
/// profiles and rules; below, the older one with its one switch and its list of programs.
enum WIN_VER_DETAIL : quint32 {
    WinVer2000 = 1,
    WinVerXP = 2,
    WinVerServer2003 = 3,
    WinVerVista = 4, ///< also Server 2003 with a service pack
    WinVer7 = 6,
    WinVerLater = 7, ///< also any version that is not known, and other systems
};

/// Whether the firewall is on.
struct FirewallState
{
    WIN_VER_DETAIL version = WinVerLater;
    bool enabled = false;        ///< older interface: it is on; newer interface: any profile is
    bool domain = false;         ///< newer interface only, as the two below
    bool privateProfile = false; ///< the profile of private networks
    bool publicProfile = false;  ///< the profile of public networks
};

/// A program that the firewall lets through. No field may be empty.
struct RuleInfo
{
    QString appName; ///< full path of the program, with backslashes
    QString ruleName;
    QString ruleDescription;
};

/// Records the state of the Windows firewall, switches it off, lets programs through, and puts the
/// old state back: at the latest when it goes out of scope.
///
/// Any thread but for launcherPrograms() and setFirewallPolicy(), which are for the main thread.
/// Each call is synchronous, initialises its thread for COM and leaves it as it was. Changes need
/// administrator rights. A failure is logged and told as false; on systems without this firewall
/// every operation fails.
///
/// The duty to put a state back stays with the object that saved it, so that it happens once: a
/// copy, also of an object with a saved state, begins without one, and an assignment leaves the
/// duties of both sides as they are.
class RIVETCORE_EXPORT CWinFirewallControl
{
public:
    CWinFirewallControl() = default;
    CWinFirewallControl(const CWinFirewallControl &other);
    CWinFirewallControl &operator=(const CWinFirewallControl &other);
    ~CWinFirewallControl();

    bool set_FirewallState(const FirewallState &state);

    /// On or off by all three profiles, or by the one switch of the older interface. The first
    /// failure ends it, and the profiles behind stay as they are.
    bool disableWindowsFirewall();
    bool enableWindowsFirewall();

    /// Lets a program through; replaces the rule of that name, or with the older interface the
    /// entry of that program.
    bool addExceptionPrograms(const RuleInfo &rule);

    /// Saves the state, switches the firewall off and lets launcherPrograms() through. A second
    /// call overwrites the saved state with the firewall that is by then off. Where the state can't
    /// be read, the firewall and what was saved before stay as they are, and only the programs are
    /// let through.
    void setFirewallPolicy();

    /// Puts the saved state back, once. Without one it does nothing.
    void resumeFirewallPolicy();

    /// As the system tells it to this program, whose manifest may hide a version above 6.2.
    WIN_VER_DETAIL GetWindowsVersion() const;

    /// Sets the version of @p out in any case, all of it on success.
    bool get_FirewallState(FirewallState &out) const;

    /// The launcher, its tunnel client and the Java of the settings, whether they exist or not, in
    /// the order in which setFirewallPolicy() adds them. Java's path is empty when none is set, and
    /// addExceptionPrograms() then refuses it. Empty without a QCoreApplication.
    static QVector<RuleInfo> launcherPrograms();

private:
    bool getFirewallByAdvancedSecurity(bool &domain, bool &privateProfile,
                                       bool &publicProfile) const;
    bool getFirewallByINetSharingConfiguration(bool &enabled) const;
    bool setFirewallByAdvancedSecurity(bool domain, bool privateProfile, bool publicProfile);
    bool setFirewallByINetSharingConfiguration(bool enabled);
    bool addAppByAdvancedSecurity(const RuleInfo &rule);
    bool addAppByINetSharingConfiguration(const RuleInfo &rule);
    bool checkRuleInfo(const RuleInfo &rule) const;

    bool m_hasSavedState = false;
    FirewallState m_savedState;
};
