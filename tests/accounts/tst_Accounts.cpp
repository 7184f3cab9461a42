#include <functional>

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QUrlQuery>

#include "core/accounts/IEventCollect.h"
#include "core/accounts/IEventReportEx.h"
#include "core/accounts/QueryUserInfo.h"
#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserRegister.h"
#include "core/foundation/Environment.h"
#include "tests/support/Await.h"
#include "tests/support/CoreRun.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"

namespace {

using Host = RivetLoginHost;
using Register = RivetUserRegister;
using Profile = RivetUserProfile;

QByteArray answer(const QByteArray &user)
{
    return R"({"code":"1","ortoken":"tok3n","oruser_profile":{"login":"Bob","user":)" + user + "}}";
}

const QByteArray info =
    R"({"code":0,"bid":"7","money":"50","VIPlevel":"3","deadLine":"-2","endTime":"4294967298.9"})";

/// A run of the core with a journal of all that it tells: a letter for the signal, its values.
struct Run final : CoreRun, IEventCollect, IEventReportEx
{
    explicit Run(const QByteArray &script, const QByteArray &login = answer(R"({"bid":"7"})"))
    {
        server.play("/account/login", login, script);
        host->setLoginPageInfo("page");
        host->setEventReporter(this, this);
        note("s", host, &Host::loginStatusChanged);
        note("ok", host, &Host::loginSuccess);
        note("no", host, &Host::loginFailed);
        note("canceled", host, &Host::canceled);
        note("out", host, &Host::logouted);
        note("ok", Register::GetInstance(), &Register::registerSuccess);
        note("no", Register::GetInstance(), &Register::registerFailed);
        note("info", Profile::GetInstance(), &Profile::refreshProfile);
    }
    template <typename Object, typename Signal>
    void note(const QString &name, Object *object, Signal signal)
    {
        QObject::connect(object, signal, object, [this, name](const auto &...values) {
            journal << QStringList({name, QVariant(values).toString()...}).join(',');
        });
    }
    void CollectEvent(int a, int b, int c) override
    {
        journal << QString("%1,%2,%3").arg(a).arg(b).arg(c);
    }
    void ReportEvent(const QString &a, const QString &b) override { journal << a + "," + b; }
    bool hasEnded(int count) const
    {
        return journal.join(' ').count(QRegularExpression("\\b(ok|no),")) == count;
    }
    bool end(int count = 1)
    {
        return await([&] { return hasEnded(count); });
    }

    Host *host = Host::GetInstance();
    QStringList journal;
};

} // namespace

class tst_Accounts : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void loginGoesThroughItsStates()
    {
        // What is done, the service's script and answer ("=" is a good one), the journal, how often
        // it is asked.
        const char *rows[] = {
            "in end1||=|s,0,2 s,2,3 ok,page,bob 1,0,0 7,0|1",
            "init in init in end1 in out out||=|s,1,2 s,2,3 ok,page,bob 1,0,0 7,0 s,3,1 out out|1",
            "in end1|status=500||s,0,2 s,2,1 no,bob,network error|1",
            "silence in end1|mute||s,0,2 s,2,1 no,bob,network error|1",
            "in end1||{|s,0,2 s,2,1 no,bob,internal error|1",
            "in end1||{}|s,0,2 s,2,1 no,bob,invalid user name or password|1",
            "in end1||{\"code\":1,\"oruser_profile\":{\"user\":{\"bid\":\"7\"}}}|"
            "s,0,2 s,2,1 no,bob,invalid user name or password|1",
            "cancel in cancel cancel|mute||s,0,2 s,2,1 canceled,bob|0",
            "in sent cancel in end1|mute then|=|"
            "s,0,2 s,2,1 canceled,bob s,1,2 s,2,3 ok,page,bob 1,0,0 7,0|2",
            "in out end1||=|s,0,2 s,2,1 out s,1,3 ok,page,bob 1,0,0 7,0|1",
            "in out cancel|mute||s,0,2 s,2,1 out canceled,bob|0",
            "in sent out in end1|status=500 then|=|"
            "s,0,2 s,2,1 out s,1,2 s,2,3 ok,page,bob 1,0,0 7,0|2",
            "again in end2|status=500 then|=|"
            "s,0,2 s,2,1 no,bob,network error s,1,2 s,2,3 ok,page,slot 1,0,0 7,0|2"};
        const LogCapture log;
        for (const char *row : rows) {
            const QStringList cells = QString(row).split('|');
            Run run(cells[1].toLatin1(),
                    cells[2] == "=" ? answer(R"({"bid":"7"})") : cells[2].toLatin1());
            const auto logIn = [&] { run.host->LogIn("bob", false, false, "secret"); };
            const auto again = [&] { run.host->LogIn("slot", false, false, "x"); };
            const auto manager = Environment::GetInstance()->getShareNetworkAccessMgr();
            const QHash<QString, std::function<void()>> actions = {
                {"in", logIn},
                {"out", [&] { run.host->LogOut(); }},
                {"cancel", [&] { run.host->Cancel(); }},
                {"init", [&] { run.host->changeInitLoginState(); }},
                {"silence", [&] { manager->setTransferTimeout(100); }},
                {"again", [&] { connect(run.host, &Host::loginFailed, run.host, again); }},
                {"sent", [&] { QVERIFY(await([&] { return !run.asked("login").isEmpty(); })); }},
                {"end1", [&] { QVERIFY(run.end(1)); }},
                {"end2", [&] { QVERIFY(run.end(2)); }}};
            for (const QString &action : cells[0].split(' '))
                actions[action]();
            QCOMPARE(run.journal.filter(QRegularExpression("^(?!info)")).join(' '), cells[3]);
            QCOMPARE(run.asked("login").size(), cells[4].toInt());
            QCOMPARE(Profile::GetInstance()->getBid(), run.host->status() == 3 ? 7u : 0u);
        }
        QVERIFY(log.has(QtDebugMsg, "filter invalid login event"));
        QVERIFY(log.has(QtWarningMsg, "network operation canceled, Operation canceled"));
        QVERIFY(log.has(QtCriticalMsg, "invalid user profile:{}"));
    }

    void passwordsGoToTheServiceOnly()
    {
        const LogCapture log;
        Run run("status=404 then Set-Cookie=sid=c00kie");
        const QString marker = Host::storedPasswordMarker,
                      secret = "5ebe2294ecd0e0f08eab7690d2a6ee69";
        // Name, password, query.
        const QStringList rows[] = {
            {"bob", "secret", "user=bob&password=" + secret + "&channel=oriel"},
            {"bob", marker, "user=bob&password=" + QString(32, '0') + "&channel=oriel"},
            {"%2", "secret", "user=%252&password=" + secret + "&channel=oriel"},
            {"%2", marker, "user=%252&password=" + secret + "&channel=oriel"},
            {"bob", "ORIELKeepPw",
             "user=bob&password=4aa31835c1aa72ffaf9f888fdd3cb3f7&channel=oriel"},
            {"", "secret", "user=&password=" + QString(32, '0') + "&channel=oriel"}};
        for (int i = 0; i < 6; ++i) {
            run.host->LogIn(rows[i][0], true, false, rows[i][1]);
            QVERIFY(run.end(i + 1));
            run.host->LogOut();
            QCOMPARE(run.asked("login").last(), "/account/login?" + rows[i][2]);
        }
        QVERIFY(await([&] { return run.asked("/info").size() == 5; }));
        QCOMPARE(run.server.requests().last().headers["cookie"], "sid=c00kie");
        const QString lines = log.lines().join('\n');
        for (const char *line : {"network error, Error transferring http://", "user name is empty.",
                                 "something must be wrong. not login info for user bob\n"})
            QVERIFY2(lines.contains(line), qPrintable(lines));
        for (const char *taboo : {"secret", "5ebe2294", "4aa31835", "tok3n", "c00kie", "?"})
            QVERIFY2(!lines.contains(taboo), qPrintable(lines));
    }

    void profileTakesTheAnswerApart()
    {
        Run run("");
        Profile &profile = *Profile::GetInstance();
        const auto take = [&](const QByteArray &user) {
            profile.setCurrentProfile(QJsonDocument::fromJson(answer(user)).object());
        };
        take(R"({"bid":"4000000000","exp":7,"level":"x","createTime":"4000000000","email":5,
             "expTotal":12,"nowTime":1500000000123.9,"_48":"i"})");
        QVERIFY(profile.getBid() == 4000000000u && profile.getCreateTime() == 4000000000u);
        QVERIFY(profile.getExp() == 0 && profile.getLevel() == 0 && profile.getEmail().isEmpty());
        QVERIFY(profile.getExpTotal() == 12 && profile.getNowTime() == 1500000000123u);
        QVERIFY(profile.get48Icon() == "i" && profile.property("userName") == "Bob");
        profile.setCurrentProfile({{"code", "0"}});
        QVERIFY2(profile.getBid() != 0 && profile.userProfileJson().isEmpty(), "refused");
        QCOMPARE(profile.userExternJson()["ortoken"], "tok3n");
        take(R"({"bid":"1","nowTime":1e300})");
        QCOMPARE(profile.getNowTime(), 0u);
        profile.resetCurrentProfile();
        QVERIFY(profile.getBid() == 0 && profile.userExternJson()["ortoken"] == "");
        QVERIFY(profile.userExternJson()["skinsPath"].toString().endsWith("skins"));
    }

    void moneyAndVip()
    {
        // The service's script and answer; whether it is one; money, level, days, end.
        const QByteArray rows[][3] = {{"", info, "1 50 3 -2 2"},
                                      {"", QByteArray(info).replace("8.9", "e99"), "1 50 3 -2 0"},
                                      {"", R"({"code":-1,"msg":"none"})", "1 0 1 0 0"},
                                      {"", R"({"code":2,"msg":"no"})", "0 0 1 0 0"},
                                      {"", QByteArray(info).replace("\"7\"", "7"), "0 0 1 0 0"},
                                      {"", QByteArray(info).replace(":0", ":\"0\""), "0 0 1 0 0"},
                                      {"status=500", "", "0 0 1 0 0"}};
        for (const auto &[script, body, outcome] : rows) {
            const LogCapture log;
            Run run("");
            run.server.play("/account/info", body, script);
            QueryUserInfo query;
            QSignalSpy finished(&query, &QueryUserInfo::queryFinished);
            query.QueryUser(7);
            QVERIFY(await([&] { return !finished.isEmpty(); }));
            const RivetUserInfo got = query.GetQueryUserInfo();
            const QList<qint64> values = {finished[0][0].toInt(), got.money, got.vipLevel,
                                          got.vipDaysLeft, got.vipEndTime};
            QStringList texts;
            for (const qint64 value : values)
                texts << QString::number(value);
            QCOMPARE(texts.join(' '), outcome);
            const QUrlQuery asked(QUrl(run.asked("/info").first()).query());
            const auto value = [&](const char *key) { return asked.queryItemValue(key).toUtf8(); };
            const QByteArray text = "Q7K3XeLpmmTzb57" + value("rand") + value("time");
            QCOMPARE(value("sign"),
                     QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());
        }
    }

    void slowInfoOfAnotherUserIsDropped()
    {
        Run run("");
        run.server.play("/account/info", info, "trickle=10 pause=20 then");
        Profile &profile = *Profile::GetInstance();
        profile.setCurrentProfile(QJsonDocument::fromJson(answer(R"({"bid":"8"})")).object());
        QSignalSpy slow(profile.findChild<QueryUserInfo *>(), &QueryUserInfo::queryFinished);
        QVERIFY(await([&] { return !run.asked("/info").isEmpty(); }));
        profile.setCurrentProfile(QJsonDocument::fromJson(answer(R"({"bid":"7"})")).object());
        QVERIFY(await([&] { return run.journal.size() == 1; }) && slow.isEmpty());
        profile.ModifyMoney(-20);
        QVERIFY(await([&] { return !slow.isEmpty(); }));
        const QByteArray shown = R"({"gender":0,"money":30,"nickName":"","user_id":7,)"
                                 R"("vip_expiredata":2,"vip_isExpire":false,"vip_level":3})";
        QCOMPARE(QJsonDocument::fromVariant(profile.GetRivetUserInfoJson())
                     .toJson(QJsonDocument::Compact),
                 shown);
        QCOMPARE(profile.GetRealVipLevel(), 0u);
        profile.UpdateUserVipInfoCache(4, 9, 1);
        QVERIFY(run.journal.size() == 2 && profile.GetRealVipLevel() == 4);
    }

    void registration()
    {
        // Name, password and code; the answers of the two services; the journal; the last request.
        const char *rows[] = {
            " p c|||no,,username should not empty|",
            "a  c|||no,a,password should not empty|",
            "a p |||no,a,verify code should not empty|",
            "a %3&b "
            "c|{\"code\":0}|{\"code\":\"0\"}|ok,a|/account/"
            "register?user=a&password=%253&b&name=a&type=1",
            "a@b@c p "
            "c|{\"code\":\"0\"}|{\"code\":0}|ok,a@b@c|/account/"
            "register?user=a@b@c&password=p&name=a@b@&type=1",
            "a p %1|{\"code\":\"abc\",\"msg\":\"m\"}||no,a,m|/account/verify?user=a&code=%251",
            "a p c|{\"msg\":\"m\"}||no,a,m|/account/verify?user=a&code=c",
            "a p c|{\"code\":1}||no,a,|/account/verify?user=a&code=c",
            "a p c|{}||no,a,internal error|/account/verify?user=a&code=c",
            "a p c|{\"code\":0}|x|no,a,internal "
            "error|/account/register?user=a&password=p&name=a&type=1",
            "a p c|{\"code\":0}||no,a,network "
            "error|/account/register?user=a&password=p&name=a&type=1"};
        for (const char *row : rows) {
            const QStringList cells = QString(row).split('|'), words = cells[0].split(' ');
            Run run("");
            run.server.play("/account/verify", cells[1].toUtf8(), "");
            run.server.play("/account/register", cells[2].toUtf8(),
                            cells[2].isEmpty() ? "status=500" : "");
            QMetaObject::invokeMethod(Register::GetInstance(), "registerAccount",
                                      Q_ARG(QString, words[0]), Q_ARG(QString, words[1]),
                                      Q_ARG(QString, words[2]));
            QVERIFY(run.end());
            QCOMPARE(run.journal.join(' '), cells[3]);
            QCOMPARE(run.asked("/").value(run.asked("/").size() - 1), cells[4]);
        }
        const LogCapture log;
        Run run("");
        run.server.play("/account/verify", "{\"code\":0}", "trickle=1 pause=9 then");
        run.server.play("/account/register", "{\"code\":0}", "");
        for (const char *user : {"slow", "quick"})
            Register::GetInstance()->registerAccount(user, "p", "1");
        QVERIFY(run.end(2));
        QCOMPARE(run.journal.join(' '), "ok,quick ok,slow");
        QMetaObject::invokeMethod(Register::GetInstance(), "onVerifyCodeFinished");
        QMetaObject::invokeMethod(Register::GetInstance(), "onRegisterAccountFinished");
        QCOMPARE(log.lines().join('|'), "not expected error|not expected error.");
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Accounts)
#include "tst_Accounts.moc"
