#include <QCryptographicHash>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QUrlQuery>

#include "core/accounts/IEventCollect.h"
#include "core/accounts/IEventReportEx.h"
#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserRegister.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "core/foundation/Environment.h"
#include "tests/support/CoreRun.h"

namespace {

const QByteArray answer = R"({"code":"1","ortoken":"tok3n","oruser_profile":{"login":"Bob","user":
    {"bid":"7","exp":7,"sid":"x","createTime":"4000000000","nowTime":1500000000123.9}}})";

/// A run of the core with a journal of what it tells: a word for the signal, and its values.
struct Run final : CoreRun, IEventCollect, IEventReportEx
{
    Run()
    {
        host.setLoginPageInfo("page");
        host.setEventReporter(this, this);
        note("s", host, &RivetLoginHost::loginStatusChanged);
        note("ok", host, &RivetLoginHost::loginSuccess);
        note("no", host, &RivetLoginHost::loginFailed);
        note("canceled", host, &RivetLoginHost::canceled);
        note("out", host, &RivetLoginHost::logouted);
        note("ok", registration, &RivetUserRegister::registerSuccess);
        note("no", registration, &RivetUserRegister::registerFailed);
        note("info", profile, &RivetUserProfile::refreshProfile);
    }
    template <typename Object, typename Signal>
    void note(const QString &word, Object &object, Signal signal)
    {
        QObject::connect(&object, signal, [this, word](const auto &...values) {
            journal << QStringList({word, QVariant(values).toString()...}).join(',');
            if (journal.join(' ') == lastWords)
                core.reset();
        });
    }
    void CollectEvent(int a, int, int) override { journal << QString::number(a); }
    void ReportEvent(const QString &a, const QString &b) override { journal << a + "," + b; }
    void logIn(const QString &password = "secret") { host.LogIn("b", true, false, password); }
    bool saw(const char *word, int count = 1) const
    {
        return await([&] { return journal.filter(QRegularExpression(word)).size() == count; });
    }

    RivetLoginHost &host = *RivetLoginHost::GetInstance();
    RivetUserRegister &registration = *RivetUserRegister::GetInstance();
    RivetUserProfile &profile = *RivetUserProfile::GetInstance();
    QStringList journal;
    QString lastWords; ///< the journal at whose end a slot ends the core
};

void perform(Run &run, const QString &action)
{
    const QStringList texts = action.split(',');
    if (texts[0] == "in")
        run.logIn(texts.value(1, "secret"));
    else if (action == "init")
        run.host.changeInitLoginState();
    else if (action == "again")
        QObject::connect(&run.host, &RivetLoginHost::loginFailed, [&run] { run.logIn(); });
    else if (action == "silence")
        Environment::GetInstance()->getShareNetworkAccessMgr()->setTransferTimeout(100);
    else if (action == "sent")
        QVERIFY(await([&] { return !run.asked("user=").isEmpty(); }));
    else if (texts[0] == "new")
        run.registration.registerAccount(texts[1], texts[2], texts[3]);
    else if (texts[0] == "end")
        QVERIFY(run.saw("^(ok|no),", texts[1].toInt()));
    else
        QVERIFY(QMetaObject::invokeMethod(&run.host, action.toLatin1()));
}

} // namespace

class tst_Accounts : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void loginsAndRegistrations()
    {
        // What is done; the script of login or code check and the answer ("=" is a good one); the
        // answer to a registration; the journal ("+" is a login); the requests: how many, the last.
        const char *rows[] = {
            "in end,1||=||s,0,2 +|1?user=b&password=5ebe2294ecd0e0f08eab7690d2a6ee69&channel=oriel",
            "init in init in end,1 in LogOut||=||s,1,2 + s,3,1 out|1",
            "in end,1 LogOut in,orielKeepPw end,2||=||s,0,2 + s,3,1 out s,1,2 "
            "+|2a6ee69&channel=oriel",
            "in,ORIELKeepPw end,1||=||s,0,2 +|14aa31835c1aa72ffaf9f888fdd3cb3f7&channel=oriel",
            "in,orielKeepPw end,1|status=404|||s,0,2 s,2,1 no,b,network "
            "error|1000000&channel=oriel",
            "silence in end,1|mute|||s,0,2 s,2,1 no,b,network error|1",
            "in end,1||{||s,0,2 s,2,1 no,b,internal error|1",
            "in end,1||{}||s,0,2 s,2,1 no,b,invalid user name or password|1",
            "Cancel in Cancel LogOut|mute|||s,0,2 s,2,1 canceled,b out|0",
            "in sent Cancel in end,1|mute then|=||s,0,2 s,2,1 canceled,b s,1,2 +|2",
            "in LogOut end,1||=||s,0,2 s,2,1 out s,1,3 ok,page,b 1 7,0|1",
            "in sent LogOut in end,1|status=500 then|=||s,0,2 s,2,1 out s,1,2 +|2",
            "again in end,2|status=500 then|=||s,0,2 s,2,1 no,b,network error s,1,2 +|2",
            "new,,,c||||no,,username should not empty|0",
            "new,a,p,||||no,a,verify code should not empty|0",
            "new,a,%3&b,c end,1||{'code':0}|{'code':'0'}|ok,a|2password=%253&b&name=a&type=1",
            "new,a@b@c,p,c end,1||{'code':'0'}|{'code':0}|ok,a@b@c|2&name=a@b@&type=1",
            "new,a,p,%1 end,1||{'code':'abc','msg':'m'}||no,a,m|1?user=a&code=%251",
            "new,a,p,c end,1||{'code':0}|{'msg':'m'}|no,a,m|2",
            "new,a,p,c end,1||{}||no,a,internal error|1",
            "new,a,p,c end,1||{'code':0}||no,a,network error|2",
            "new,a,p,c sent new,b,p,c end,2|trickle=1 pause=50 then|{'code':0}|{'code':0}|ok,b "
            "ok,a|4"};
        const LogCapture log;
        for (const char *row : rows) {
            const QString text = QString(row).replace("'", "\"").replace("=|", answer + "|");
            const QStringList cells = text.split('|');
            Run run;
            const QByteArray script = cells[1].toLatin1(), created = cells[3].toLatin1();
            run.server.play("/account/login", cells[2].toLatin1(), script + " Set-Cookie=a=c00kie");
            run.server.play("/account/verify", cells[2].toLatin1(), script);
            run.server.play("/account/register", created, created.isEmpty() ? "status=500" : "");
            for (const QString &action : cells[0].split(' '))
                perform(run, action);
            QCOMPARE(run.journal.join(' ').replace("s,2,3 ok,page,b 1 7,0", "+"), cells[4]);
            const QStringList asked = run.asked("user=");
            QCOMPARE(asked.size(), cells[5].left(1).toInt());
            QVERIFY2(asked.isEmpty() || asked.last().endsWith(cells[5].mid(1)), row);
            const bool isIn = run.host.status() == RivetLoginHost::LoginStatusLoggedIn;
            QCOMPARE(run.profile.getBid(), isIn ? 7u : 0u);
            const auto users = RivetUserLoginInfoHelper::GetInstance()->GetRivetUserList();
            QVERIFY2(!isIn || users->recordOf("b")->savePassword, "or it could not log in alone");
            QVERIFY(!isIn || await([&] { return !run.asked("/info").isEmpty(); }));
            QVERIFY(!isIn || run.server.requests().last().headers["cookie"] == "a=c00kie");
        }
        const QString lines = log.lines().join('\n');
        QVERIFY(lines.contains("network operation canceled, Operation canceled\n"));
        QVERIFY(lines.contains("user b\nnetwork error, Error transferring http"));
        for (const char *taboo : {"secret", "5ebe2294", "KeepPw", "4aa318", "tok3n", "c00kie", "?"})
            QVERIFY2(!lines.contains(taboo), qPrintable(lines));
    }

    void slotsMayEndTheCore()
    {
        for (const QString words : {"s,0,2 s,2,1", "s,0,2 s,2,3", "s,0,2 s,2,3 ok,page,b"}) {
            Run run;
            run.lastWords = words;
            run.server.play("/account/login", words.contains("2,3") ? answer : "", "");
            run.logIn();
            QVERIFY(await([&] { return !run.core; }));
            QCOMPARE(run.journal.join(' '), words);
        }
    }

    void profileOfTheUser()
    {
        const QByteArray info = R"({"code":0,"bid":"7","money":"5","VIPlevel":"3","deadLine":"-2",)"
                                R"("endTime":"4294967298.9"})";
        // What the user-info service answers; the user's JSON, empty if it is refused.
        const QByteArray rows[][2] = {{info, "0,5,,7,2,false,3"},
                                      {QByteArray(info).replace("8.9", "e99"), "0,5,,7,0,false,3"},
                                      {R"({"code":-1,"msg":"none"})", "0,0,,0,0,true,1"},
                                      {R"({"code":2,"msg":"no"})", ""},
                                      {QByteArray(info).replace("\"7\"", "7"), ""}};
        const auto login = QJsonDocument::fromJson(answer).object();
        const auto other = QJsonDocument::fromJson(QByteArray(answer).replace('7', '8')).object();
        for (const auto &[body, shown] : rows) {
            const LogCapture log;
            Run run;
            run.server.play("/account/info", body, "");
            run.profile.setCurrentProfile(login);
            const QString failed = "request user failed!";
            QVERIFY(await([&] { return !(run.journal + log.lines().filter(failed)).isEmpty(); }));
            QStringList values;
            for (const QVariant &value : run.profile.GetRivetUserInfoJson())
                values << value.toString();
            QCOMPARE(run.journal.isEmpty() ? "" : values.join(','), shown);
        }
        // The answer for the first user comes after that for the second, and is dropped.
        Run run;
        run.server.play("/account/info", info, "trickle=10 pause=9 then");
        RivetUserProfile &user = run.profile;
        user.setCurrentProfile(other);
        QVERIFY(await([&] { return !run.asked("bid=8").isEmpty(); }));
        user.setCurrentProfile(login);
        QVERIFY(run.saw("info"));
        user.ModifyMoney(-2);
        QVERIFY(await([&] { return user.children().isEmpty(); }));
        QVERIFY(run.saw("info") && user.GetRivetUserInfo().money == 3);
        const QUrlQuery asked(QUrl(run.asked("bid=7").first()).query());
        const auto value = [&](const char *key) { return asked.queryItemValue(key).toUtf8(); };
        const QByteArray text = "Q7K3XeLpmmTzb57" + value("rand") + value("time");
        QCOMPARE(value("sign"), QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());

        user.setCurrentProfile({{"code", 1}});
        QVERIFY(user.getExp() + user.getSid() == 0 && user.getNowTime() == 1500000000123u);
        QVERIFY(user.getCreateTime() == 4000000000u && user.property("userName") == "Bob");
        user.resetCurrentProfile();
        QVERIFY(user.getBid() == 0 && user.userExternJson()["ortoken"] == "");
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Accounts)
#include "tst_Accounts.moc"
