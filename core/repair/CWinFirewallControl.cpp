#include "core/repair/CWinFirewallControl.h"

#include <QCoreApplication>

#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/FirewallSession.h"
#include "support/jsonfskit/Log.h"

using platform::Firewall;

namespace {

// `NET_FW_PROFILE_TYPE2`, `NET_FW_IP_PROTOCOL` and `NET_FW_ACTION` of the system.
constexpr int domainProfile = 1;
constexpr int privateNetworks = 2;
constexpr int publicNetworks = 4;
constexpr int anyProtocol = 256;
constexpr int allow = 1;

bool isNewer(WIN_VER_DETAIL version)
{
    return version >= WinVerServer2003;
}

QString withBackslashes(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

RuleInfo launcherRule(const QString &path, const QString &name)
{
    return {withBackslashes(path), name, name};
}

/// Makes room for an entry of that key. False if an old one stays.
template <typename Entry>
bool removeOld(platform::FirewallEntries<Entry> &entries, const platform::FirewallText &key,
               QLatin1String failure)
{
    const bool isThere = !platform::com::hasFailed(entries.item(key));
    return !isThere || hasSucceeded(entries.remove(key), failure);
}

} // namespace

CWinFirewallControl::CWinFirewallControl(const CWinFirewallControl &) {}

CWinFirewallControl &CWinFirewallControl::operator=(const CWinFirewallControl &)
{
    return *this;
}

CWinFirewallControl::~CWinFirewallControl()
{
    resumeFirewallPolicy();
}

bool CWinFirewallControl::set_FirewallState(const FirewallState &state)
{
    if (isNewer(state.version))
        return setFirewallByAdvancedSecurity(state.domain, state.privateProfile,
                                             state.publicProfile);
    return setFirewallByINetSharingConfiguration(state.enabled);
}

bool CWinFirewallControl::disableWindowsFirewall()
{
    return set_FirewallState({GetWindowsVersion(), false, false, false, false});
}

bool CWinFirewallControl::enableWindowsFirewall()
{
    return set_FirewallState({GetWindowsVersion(), true, true, true, true});
}

bool CWinFirewallControl::addExceptionPrograms(const RuleInfo &rule)
{
    return isNewer(GetWindowsVersion()) ? addAppByAdvancedSecurity(rule)
                                        : addAppByINetSharingConfiguration(rule);
}

void CWinFirewallControl::setFirewallPolicy()
{
    FirewallState state;
    if (get_FirewallState(state)) {
        m_savedState = state;
        m_hasSavedState = true;
        disableWindowsFirewall();
    } else {
        // Nobody could switch it on again.
        Log::warning(QStringLiteral("the state of the firewall can't be read, it stays as it is"));
    }
    for (const RuleInfo &rule : launcherPrograms())
        addExceptionPrograms(rule);
}

void CWinFirewallControl::resumeFirewallPolicy()
{
    if (!m_hasSavedState)
        return;
    m_hasSavedState = false;
    set_FirewallState(m_savedState);
}

WIN_VER_DETAIL CWinFirewallControl::GetWindowsVersion() const
{
    const Firewall::SystemVersion version = Firewall::current().systemVersion();
    if (version.majorVersion == 5 && version.minorVersion == 2)
        return version.servicePackMajor == 0 ? WinVerServer2003 : WinVerVista;
    static constexpr struct
    {
        quint32 majorVersion, minorVersion;
        WIN_VER_DETAIL result;
    } known[] = {{5, 0, WinVer2000}, {5, 1, WinVerXP}, {6, 0, WinVerVista}, {6, 1, WinVer7}};
    for (const auto &row : known) {
        if (row.majorVersion == version.majorVersion && row.minorVersion == version.minorVersion)
            return row.result;
    }
    return WinVerLater;
}

bool CWinFirewallControl::get_FirewallState(FirewallState &out) const
{
    out.version = GetWindowsVersion();
    if (!isNewer(out.version))
        return getFirewallByINetSharingConfiguration(out.enabled);
    if (!getFirewallByAdvancedSecurity(out.domain, out.privateProfile, out.publicProfile))
        return false;
    out.enabled = out.domain || out.privateProfile || out.publicProfile;
    return true;
}

QVector<RuleInfo> CWinFirewallControl::launcherPrograms()
{
    if (!QCoreApplication::instance())
        return {};
    const QString folder = QCoreApplication::applicationDirPath();
    QVector<RuleInfo> rules{
        launcherRule(folder + QLatin1String("/rivet.exe"), QStringLiteral("Rivet")),
        launcherRule(folder + QLatin1String("/LanConfig/openvpn.exe"),
                     QStringLiteral("Rivet联机"))};
    if (const auto settings = Environment::GetInstance()->settings()) {
        const QString java = settings->value(QStringLiteral("JavaPath"), QVariant()).toString();
        rules << launcherRule(java, QStringLiteral("Rivet Java"));
    }
    return rules;
}

bool CWinFirewallControl::getFirewallByAdvancedSecurity(bool &domain, bool &privateProfile,
                                                        bool &publicProfile) const
{
    FirewallPolicySession session;
    if (!session.open())
        return false;
    const struct
    {
        int type;
        bool &enabled;
        const char *name;
    } profiles[] = {{domainProfile, domain, "domain"},
                    {privateNetworks, privateProfile, "private"},
                    {publicNetworks, publicProfile, "public"}};
    for (const auto &[type, enabled, name] : profiles) {
        if (platform::com::hasFailed(session.policy().getFirewallEnabled(type, enabled))) {
            Log::warning(QLatin1String("get ") + QLatin1String(name) +
                         QLatin1String(" firewall state failed"));
            return false;
        }
    }
    return true;
}

bool CWinFirewallControl::getFirewallByINetSharingConfiguration(bool &enabled) const
{
    FirewallProfileSession session;
    return session.open() &&
           !platform::com::hasFailed(session.profile().getFirewallEnabled(enabled));
}

bool CWinFirewallControl::setFirewallByAdvancedSecurity(bool domain, bool privateProfile,
                                                        bool publicProfile)
{
    FirewallPolicySession session;
    if (!session.open())
        return false;
    const auto put = [&session](int type, bool enabled, const char *failure) {
        return hasSucceeded(session.policy().putFirewallEnabled(type, enabled),
                            QLatin1String(failure));
    };
    return put(domainProfile, domain, "put_FirewallEnabled failed for Domain: ") &&
           put(privateNetworks, privateProfile, "put_FirewallEnabled failed for Private: ") &&
           put(publicNetworks, publicProfile, "put_FirewallEnabled failed for Public: ");
}

bool CWinFirewallControl::setFirewallByINetSharingConfiguration(bool enabled)
{
    FirewallProfileSession session;
    if (!session.open())
        return false;
    if (!platform::com::hasFailed(session.profile().putFirewallEnabled(enabled)))
        return true;
    Log::warning(QStringLiteral("put firewall failed"));
    return false;
}

bool CWinFirewallControl::addAppByAdvancedSecurity(const RuleInfo &rule)
{
    if (!checkRuleInfo(rule))
        return false;
    const auto path = makeFirewallText(rule.appName);
    const auto name = makeFirewallText(rule.ruleName);
    const auto description = makeFirewallText(rule.ruleDescription);
    if (!path || !name || !description)
        return false;
    FirewallPolicySession session;
    if (!session.open())
        return false;
    std::unique_ptr<platform::FirewallRules> rules;
    if (!hasSucceeded(session.policy().getRules(rules), QLatin1String("get_Rules failed: ")) ||
        !removeOld(*rules, *name, QLatin1String("Remove rule failed: ")))
        return false;
    std::unique_ptr<platform::FirewallRule> made;
    return hasSucceeded(Firewall::current().createRule(made),
                        QLatin1String("CoCreateInstance for Firewall Rule failed: ")) &&
           hasSucceeded(made->putName(*name), QLatin1String("put_Name failed: ")) &&
           hasSucceeded(made->putDescription(*description),
                        QLatin1String("put_Description failed: ")) &&
           hasSucceeded(made->putApplicationName(*path),
                        QLatin1String("put_ApplicationName failed: ")) &&
           hasSucceeded(made->putProtocol(anyProtocol), QLatin1String("put_Protocol failed: ")) &&
           hasSucceeded(made->putAction(allow), QLatin1String("put_Action failed: ")) &&
           hasSucceeded(made->putEnabled(true), QLatin1String("put_Enabled failed: ")) &&
           hasSucceeded(rules->add(*made), QLatin1String("Firewall Rule Add failed: "));
}

bool CWinFirewallControl::addAppByINetSharingConfiguration(const RuleInfo &rule)
{
    if (!checkRuleInfo(rule))
        return false;
    FirewallProfileSession session;
    if (!session.open())
        return false;
    std::unique_ptr<platform::FirewallPrograms> programs;
    if (!hasSucceeded(session.profile().getAuthorizedApplications(programs),
                      QLatin1String("get_AuthorizedApplications failed: ")))
        return false;
    const auto path = makeFirewallText(rule.appName);
    if (!path || !removeOld(*programs, *path, QLatin1String("Remove app failed: ")))
        return false;
    Log::debug(QStringLiteral("the app is not in the collection"));
    std::unique_ptr<platform::FirewallProgram> made;
    if (!hasSucceeded(Firewall::current().createProgram(made),
                      QLatin1String("CoCreateInstance failed:")) ||
        !hasSucceeded(made->putProcessImageFileName(*path),
                      QLatin1String("put_ProcessImageFileName failed:")))
        return false;
    const auto name = makeFirewallText(rule.ruleName, QLatin1String("SysAllocString failed:"));
    return name && hasSucceeded(made->putName(*name), QLatin1String("put_Name failed:")) &&
           hasSucceeded(programs->add(*made), QLatin1String("Add failed:"));
}

bool CWinFirewallControl::checkRuleInfo(const RuleInfo &rule) const
{
    const struct
    {
        const QString &field;
        const char *warning;
    } fields[] = {{rule.appName, "app name is null"},
                  {rule.ruleName, "rule name is null"},
                  {rule.ruleDescription, "rule description is null"}};
    for (const auto &[field, warning] : fields) {
        if (field.isEmpty()) {
            Log::warning(QLatin1String(warning));
            return false;
        }
    }
    return true;
}
