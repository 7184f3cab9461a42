#include <QNetworkAccessManager>

#include "core/accounts/IEventCollect.h"
#include "core/accounts/IEventReportEx.h"
#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "core/foundation/Environment.h"
#include "tests/support/Await.h"
#include "tests/support/CoreRun.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"

namespace {

const QByteArray accepted = R"({"code":"1","ortoken":"tok3n","loginAuth":"auth3","oruser_profile":
                               {"login":"Bob","user":{"bid":"7"}}})";
const QByteArray digestOfSecret = "5ebe2294ecd0e0f08eab7690d2a6ee69";

/// A run of the core with a journal of all that its login host tells.
struct Login final : IEventCollect, IEventReportEx
{
    explicit Login(const QByteArray &script = "", const QByteArray &body = accepted)
    {
        using Host = RivetLoginHost;
        run.server.play("/account/login", body, script);
        host = Host::GetInstance();
        host->setLoginPageInfo("page");
        host->setEventReporter(this, this);
        QObject::connect(host, &Host::loginStatusChanged, [this](uint from, uint to) {
            journal << QString("%1>%2").arg(from).arg(to);
        });
        QObject::connect(
            host, &Host::loginSuccess, [this](const QString &page, const QString &name) {
                journal << "success," + page + "," + name + "," + (isStored(name) ? "stored" : "");
            });
        QObject::connect(host, &Host::loginFailed,
                         [this](const QString &name, const QString &text) {
                             journal << "failed," + name + "," + text;
                         });
        QObject::connect(host, &Host::canceled,
                         [this](const QString &name) { journal << "canceled," + name; });
        QObject::connect(host, &Host::logouted, [this] { journal << "out"; });
    }
    void CollectEvent(int a, int b, int c) override
    {
        journal << QString("%1,%2,%3").arg(a).arg(b).arg(c);
    }
    void ReportEvent(const QString &a, const QString &b) override { journal << a + "," + b; }
    static bool isStored(const QString &name)
    {
        const auto list = RivetUserLoginInfoHelper::GetInstance()->getHistoricalLoginUserList();
        return list["lastLoginUser"] == name;
    }
    bool awaitText(const QString &text)
    {
        return await([&] { return journal.join(' ').contains(text); });
    }

    CoreRun run;
    RivetLoginHost *host;
    QStringList journal;
};

} // namespace

class tst_RivetLoginHost : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void goesThroughItsStates()
    {
        const QString ok = "2>3 success,page,bob, 1,0,0 7,0";
        const QString refused = "0>2 2>1 failed,bob,invalid user name or password";
        // What is done, the server's script and answer, the journal, logins asked for.
        const struct
        {
            const char *actions;
            QByteArray script, body;
            QString journal;
            int asked;
        } rows[] = {
            {"in wait", "", accepted, "0>2 " + ok, 1},
            {"init init in init in wait in out out", "", accepted, "1>2 " + ok + " 3>1 out out", 1},
            {"in wait", "status=500", "", "0>2 2>1 failed,bob,network error", 1},
            {"silence in wait", "mute", "", "0>2 2>1 failed,bob,network error", 1},
            {"in wait", "", "", "0>2 2>1 failed,bob,internal error", 1},
            {"in wait", "", "{", "0>2 2>1 failed,bob,internal error", 1},
            {"in wait", "", "{}", refused, 1},
            {"in wait", "", QByteArray(accepted).replace("\"1\"", "1"), refused, 1},
            {"in wait", "", QByteArray(accepted).replace("\"7\"", "7"), refused, 1},
            {"cancel in cancel cancel", "mute", "", "0>2 2>1 canceled,bob", 0},
            {"in sent cancel in wait", "mute then", accepted, "0>2 2>1 canceled,bob 1>2 " + ok, 2},
            {"in out wait", "", accepted, "0>2 2>1 out 1>3 " + ok.mid(4), 1},
            {"in out cancel", "mute", "", "0>2 2>1 out canceled,bob", 0},
            {"in sent out in wait", "status=500 then", accepted, "0>2 2>1 out 1>2 " + ok, 2},
        };
        const LogCapture log;
        for (const auto &row : rows) {
            Login login(row.script, row.body);
            for (const QByteArray &action : QByteArray(row.actions).split(' '))
                perform(login, action);
            QCOMPARE(login.journal.join(' '), row.journal);
            QCOMPARE(login.run.asked("/account/login").size(), row.asked);
            QCOMPARE(RivetUserProfile::GetInstance()->getBid(),
                     login.host->status() == 3 ? 7u : 0u);
        }
        QVERIFY(log.has(QtDebugMsg, "filter invalid login event"));
        QVERIFY(log.has(QtWarningMsg, "network operation canceled, Operation canceled"));
        QVERIFY(log.has(QtCriticalMsg, "invalid user profile:{}"));
    }

    void loginFromASlotSurvives()
    {
        Login login("status=500 then");
        connect(login.host, &RivetLoginHost::loginFailed, login.host,
                [&] { login.host->LogIn("second", false, false, "x"); });
        login.host->LogIn("bob", false, false, "secret");
        QVERIFY(login.awaitText("success,page,second"));
    }

    void sendsThePasswordOrTheStoredOne()
    {
        const QString zeros(32, '0');
        const LogCapture log;
        Login login;
        const auto asks = [&](const QString &name, const QString &password, bool isAuto) {
            login.host->LogIn(name, isAuto, false, password);
            login.awaitText("success,page," + name + ",");
            login.host->LogOut();
            return login.run.asked("/account/login").last().mid(15);
        };
        const QString marker = RivetLoginHost::storedPasswordMarker;
        QCOMPARE(asks("bob", "secret", true),
                 "user=bob&password=" + digestOfSecret + "&channel=oriel");
        QCOMPARE(asks("bob", marker, true),
                 "user=bob&password=" + digestOfSecret + "&channel=oriel");
        QVERIFY(asks("bob2", marker, false).contains(zeros));
        QVERIFY(asks("", "secret", false).contains("user=&password=" + zeros));
        QVERIFY(asks("%2", "ORIELKeepPw", false)
                    .startsWith("user=%252&password=4aa31835c1aa72ffaf9f888fdd3cb3f7"));
        QVERIFY(log.has(QtCriticalMsg, "something must be wrong.user name is empty."));
        QVERIFY(log.has(QtCriticalMsg, "something must be wrong. not login info for user bob2"));
        const auto users = RivetUserLoginInfoHelper::GetInstance()->GetRivetUserList()->users;
        QVERIFY2(users["bob"]->savePassword && !users["bob2"]->savePassword, "auto login saves it");
    }

    void cookiesGoAlongAndSecretsStayOffTheLog()
    {
        const LogCapture log;
        Login login("status=404 then Set-Cookie=sid=c00kie");
        for (const char *end : {"failed", "success"}) {
            login.host->LogIn("bob", false, false, "secret");
            QVERIFY(login.awaitText(end));
        }
        QVERIFY(await([&] { return login.run.asked("/account/info").size() == 1; }));
        QCOMPARE(login.run.server.requests().last().headers["cookie"], "sid=c00kie");
        QVERIFY(await([&] { return log.lines().contains("request user failed!"); }));
        const QString lines = log.lines().join('\n');
        QVERIFY2(lines.contains("network error, Error transferring http://"), qPrintable(lines));
        for (const char *secret : {"secret", "5ebe2294", "tok3n", "auth3", "c00kie", "?"})
            QVERIFY2(!lines.contains(secret), secret);
    }

private:
    static void perform(Login &login, const QByteArray &action)
    {
        const int ended = login.journal.filter(QRegularExpression("^(success|failed)")).size();
        if (action == "in")
            login.host->LogIn("bob", false, false, "secret");
        else if (action == "out")
            login.host->LogOut();
        else if (action == "cancel")
            login.host->Cancel();
        else if (action == "init")
            login.host->changeInitLoginState();
        else if (action == "silence")
            Environment::GetInstance()->getShareNetworkAccessMgr()->setTransferTimeout(100);
        else if (action == "sent")
            QVERIFY(await([&] { return !login.run.asked("/account/login").isEmpty(); }));
        else
            QVERIFY(await([&] {
                return login.journal.filter(QRegularExpression("^(success|failed)")).size() > ended;
            }));
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RivetLoginHost)
#include "tst_RivetLoginHost.moc"
