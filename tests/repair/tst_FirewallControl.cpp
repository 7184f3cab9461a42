#include <QOperatingSystemVersion>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/CWinFirewallControl.h"
#include "platform/Firewall.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"

using namespace platform;
using Result = ComResult;
using Texts = const FirewallText &;
template <typename Type>
using Out = std::unique_ptr<Type> &;

struct Text : FirewallText
{
    explicit Text(const QString &content) : text(content) {}
    static QString of(Texts other) { return static_cast<const Text &>(other).text; }
    const QString text;
};

/// A machine's firewall, and each call that was made to it.
struct World
{
    Result call(const QString &name)
    {
        calls << name;
        return !denied.isEmpty() && (name + ' ').startsWith(denied + ' ') ? 0x80070005 : 0;
    }
    template <typename Type, typename Made = struct Object>
    Result give(const QString &name, Out<Type> place)
    {
        const Result result = call(name);
        place = result == 0 ? std::make_unique<Made>(*this) : nullptr;
        return result;
    }
    QByteArray on = "110-1"; ///< the older interface, then the profiles, by their numbers
    QString denied;          ///< the first words of the calls that fail
    QStringList entries, calls;
    int objects = 0; ///< the living ones
};

/// Every object of the firewall in one.
struct Object : FirewallRule,
                FirewallProgram,
                FirewallRules,
                FirewallPrograms,
                FirewallPolicy,
                FirewallManager,
                FirewallLocalPolicy,
                FirewallProfile
{
    explicit Object(World &ofWorld) : world(ofWorld) { ++world.objects; }
    ~Object() override { --world.objects; }
    Result putName(Texts name) override { return put("Name", Text::of(name)); }
    Result putDescription(Texts text) override { return put("Description", Text::of(text)); }
    Result putApplicationName(Texts path) override
    {
        return put("ApplicationName", Text::of(path));
    }
    Result putProcessImageFileName(Texts path) override { return put("File", Text::of(path)); }
    Result putProtocol(int value) override { return put("Protocol", QString::number(value)); }
    Result putAction(int value) override { return put("Action", QString::number(value)); }
    Result putEnabled(bool value) override { return put("Enabled", QString::number(value)); }
    Result put(const QString &property, const QString &value)
    {
        key = key.isEmpty() ? value : key;
        return world.call("put_" + property + ' ' + value);
    }
    Result item(Texts name) override
    {
        world.call("Item");
        return world.entries.contains(Text::of(name)) ? 0 : 0x80070002;
    }
    Result remove(Texts name) override
    {
        world.entries.removeOne(Text::of(name));
        return world.call("Remove");
    }
    Result add(FirewallRule &rule) override { return add(static_cast<Object &>(rule).key); }
    Result add(FirewallProgram &app) override { return add(static_cast<Object &>(app).key); }
    Result add(const QString &name)
    {
        world.entries << name;
        return world.call("Add");
    }
    Result getFirewallEnabled(bool &isOn) override { return getFirewallEnabled(0, isOn); }
    Result putFirewallEnabled(bool isOn) override { return putFirewallEnabled(0, isOn); }
    Result getFirewallEnabled(int type, bool &isOn) override
    {
        isOn = world.on.at(type) == '1';
        return world.call(QString("get %1").arg(type));
    }
    Result putFirewallEnabled(int type, bool isOn) override
    {
        const Result result = world.call(QString("put %1").arg(type));
        world.on[type] = result != 0 ? world.on.at(type) : isOn ? '1' : '0';
        return result;
    }
    Result getRules(Out<FirewallRules> o) override { return world.give("get_Rules", o); }
    Result getLocalPolicy(Out<FirewallLocalPolicy> o) override
    {
        return world.give("get_Local", o);
    }
    Result getCurrentProfile(Out<FirewallProfile> o) override { return world.give("get_Cur", o); }
    Result getAuthorizedApplications(Out<FirewallPrograms> o) override
    {
        return world.give("get_AuthorizedApplications", o);
    }
    World &world;
    QString key; ///< what was put first
};

struct FakeFirewall : Firewall
{
    explicit FakeFirewall(SystemVersion ofSystem) : version(ofSystem) { replace(this); }
    ~FakeFirewall() override { replace(nullptr); }
    SystemVersion systemVersion() const override { return version; }
    Result enterThread() const override { return mode ? mode : world.call("enter"); }
    void leaveThread() const override { world.call(world.objects ? "leave too early" : "leave"); }
    std::unique_ptr<FirewallText> makeText(const QString &text) const override
    {
        return world.call("text " + text) == 0 ? std::make_unique<Text>(text) : nullptr;
    }
    Result createPolicy(Out<FirewallPolicy> o) const override { return world.give("policy", o); }
    Result createManager(Out<FirewallManager> o) const override { return world.give("manager", o); }
    Result createRule(Out<FirewallRule> o) const override { return world.give("entry", o); }
    Result createProgram(Out<FirewallProgram> o) const override { return world.give("entry", o); }

    const SystemVersion version;
    Result mode = 0; ///< what initialising a thread answers
    mutable World world;
};

// Next to each other where the interfaces change.
const Firewall::SystemVersion newer{5, 2, 0};
const Firewall::SystemVersion older{5, 1, 3};
const RuleInfo rule{"C:\\app.exe", "name", "what"};

class tst_FirewallControl : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tellsTheVersions()
    {
        const quint32 rows[][4] = {{5, 0, 4, 1}, {5, 1, 3, 2}, {5, 2, 0, 3}, {5, 2, 1, 4},
                                   {6, 0, 2, 4}, {6, 1, 0, 6}, {6, 2, 0, 7}, {10, 0, 0, 7}};
        for (const auto &[major, minor, servicePack, result] : rows) {
            const FakeFirewall firewall({major, minor, servicePack});
            QCOMPARE(quint32(CWinFirewallControl().GetWindowsVersion()), result);
        }
    }

    void replacesAnEntry()
    {
        const std::pair<Firewall::SystemVersion, QString> rows[] = {
            {newer, "text C:\\app.exe,text name,text what,enter,policy,get_Rules,Item,Remove,entry,"
                    "put_Name name,put_Description what,put_ApplicationName C:\\app.exe,"
                    "put_Protocol 256,put_Action 1,put_Enabled 1,Add,leave"},
            {older, "enter,manager,get_Local,get_Cur,get_AuthorizedApplications,text C:\\app.exe,"
                    "Item,Remove,entry,put_File C:\\app.exe,text name,put_Name name,Add,leave"}};
        for (const auto &[version, calls] : rows) {
            const FakeFirewall firewall(version);
            QVERIFY(CWinFirewallControl().addExceptionPrograms(rule));
            firewall.world.calls.clear();
            QVERIFY(CWinFirewallControl().addExceptionPrograms(rule));
            QCOMPARE(firewall.world.calls.join(','), calls);
            QCOMPARE(firewall.world.entries.size(), 1);
        }
    }

    void endsWithTheFirstFailure()
    {
        // The call that is denied, and the log; without one it is the call's name, " failed: "
        // and "#", which stands for the code.
        const QString off = "put_FirewallEnabled failed for ", gone = "|init INetFwPolicy2 failed";
        failsAt(newer,
                {"get_Rules", "put_Name", "put_Description", "put_ApplicationName", "put_Protocol",
                 "put_Action", "put_Enabled", "text what>SysAllocString failed: 0x8007000E",
                 "enter>CoInitializeEx failed: #" + gone,
                 "policy>CoCreateInstance for INetFwPolicy2 failed: #" + gone,
                 "Remove>Remove rule failed: #",
                 "entry>CoCreateInstance for Firewall Rule failed: #",
                 "Add>Firewall Rule Add failed: #", "get 1>get domain firewall state failed",
                 "get 2>get private firewall state failed",
                 "get 4>get public firewall state failed", "put 1>" + off + "Domain: #",
                 "put 2>" + off + "Private: #", "put 4>" + off + "Public: #"});
        const QString lost = "|get INetFwProfile pointer failed",
                      begun = "the app is not in the collection|";
        failsAt(older,
                {"get_AuthorizedApplications", "enter>CoInitializeEx failed: #" + lost,
                 "manager>CoCreateInstance failed: #" + lost,
                 "get_Local>get_LocalPolicy failed: #" + lost,
                 "get_Cur>get_CurrentProfile failed: #" + lost,
                 "text C:\\app.exe>SysAllocString failed: 0x8007000E",
                 "Remove>Remove app failed: #", "entry>" + begun + "CoCreateInstance failed:#",
                 "put_File>" + begun + "put_ProcessImageFileName failed:#",
                 "text name>" + begun + "SysAllocString failed:0x8007000E",
                 "put_Name>" + begun + "put_Name failed:#", "Add>" + begun + "Add failed:#",
                 "get 0>", "put 0>put firewall failed"});
    }

    void putsTheStateBack()
    {
        const RivetCoreAtExitManagerUtil core;
        const struct
        {
            Firewall::SystemVersion version;
            const char *denied, *java, *entries, *during;
        } rows[] = {
            {newer, "", "C:/java.exe", "Rivet,Rivet联机,Rivet Java", "100-0"},
            {newer, "put 4", "", "Rivet,Rivet联机", "100-1"},
            {newer, "put", "", "Rivet,Rivet联机", "110-1"},
            {newer, "get 4", "", "Rivet,Rivet联机", "110-1"},
            {newer, "put_Name Rivet", "", "Rivet联机", "100-0"},
            {older, "", "C:/java.exe", "./rivet.exe,./LanConfig/openvpn.exe,C:/java.exe", "010-1"}};
        for (const auto &[version, denied, java, entries, during] : rows) {
            const FakeFirewall firewall(version);
            World &world = firewall.world;
            Environment::GetInstance()->settings()->setValue("JavaPath", java);
            auto control = std::make_unique<CWinFirewallControl>();
            world.denied = denied;
            control->setFirewallPolicy();
            const QString folder = QCoreApplication::applicationDirPath();
            QCOMPARE(world.entries.join(','),
                     QString(entries).replace("./", folder + '/').replace('/', '\\'));
            QCOMPARE(world.on, during);
            delete new CWinFirewallControl(*control);
            QCOMPARE(world.on, during);
            world.denied.clear();
            control.reset();
            QCOMPARE(world.on, "110-1");
        }
    }

    void resumesOnceOnAnyThread()
    {
        const RivetCoreAtExitManagerUtil core;
        FakeFirewall firewall(newer);
        firewall.mode = com::changedMode;
        CWinFirewallControl control;
        control.setFirewallPolicy();
        QCOMPARE(firewall.world.on, "100-0");
        control.resumeFirewallPolicy();
        QCOMPARE(firewall.world.on, "110-1");
        firewall.world.on = "100-1"; // by the user
        control.resumeFirewallPolicy();
        QCOMPARE(firewall.world.on, "100-1");
        QVERIFY(!firewall.world.calls.contains("leave"));
    }

    // Reads only. Wine has the interface, but not the state.
    void reachesTheSystemsOwn()
    {
        const LogCapture log;
        FirewallState state;
        const bool wasRead = CWinFirewallControl().get_FirewallState(state);
        QCOMPARE(log.lines().isEmpty(), wasRead);
        QCOMPARE(log.has(QtWarningMsg, "init INetFwPolicy2 failed"),
                 QOperatingSystemVersion::currentType() != QOperatingSystemVersion::Windows);
    }

private:
    static void failsAt(const Firewall::SystemVersion &version, const QStringList &rows)
    {
        for (const QString &row : rows) {
            const LogCapture log;
            const FakeFirewall firewall(version);
            firewall.world.entries << rule.ruleName << rule.appName;
            firewall.world.denied = row.section('>', 0, 0);
            CWinFirewallControl control;
            FirewallState state;
            const bool result = row.startsWith("get ")   ? control.get_FirewallState(state)
                                : row.startsWith("put ") ? control.disableWindowsFirewall()
                                                         : control.addExceptionPrograms(rule);
            QVERIFY2(!result, qPrintable(row));
            QCOMPARE(log.lines().join('|').replace("0x80070005", "#"),
                     row.contains('>') ? row.section('>', 1) : row + " failed: #");
            // Nothing but the release follows.
            QStringList &calls = firewall.world.calls;
            calls.removeOne("leave");
            QVERIFY2(row.startsWith(calls.last().section(' ', 0, 0)), qPrintable(row));
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_FirewallControl)
#include "tst_FirewallControl.moc"
