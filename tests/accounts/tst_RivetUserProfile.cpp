#include <QCryptographicHash>
#include <QJsonDocument>
#include <QUrlQuery>

#include "core/accounts/QueryUserInfo.h"
#include "core/accounts/RivetUserProfile.h"
#include "tests/support/Await.h"
#include "tests/support/CoreRun.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"

namespace {

QJsonObject answer(const QByteArray &user)
{
    return QJsonDocument::fromJson(R"({"code":"1","ortoken":"t","oruser_profile":{"login":"Bob",
        "user":)" + user + "}}")
        .object();
}

const QByteArray info =
    R"({"code":0,"bid":"7","money":"50","VIPlevel":"3","deadLine":"-2","endTime":"4294967298.9"})";

} // namespace

class tst_RivetUserProfile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void takesTheLoginAnswerApart()
    {
        CoreRun run;
        RivetUserProfile &profile = *RivetUserProfile::GetInstance();
        profile.setCurrentProfile(
            answer(R"({"bid":"4000000000","exp":7,"level":"x","createTime":"4000000000",
                   "expTotal":12,"nowTime":1500000000123.9,"_48":"i","vip":"2","email":5})"));
        QVERIFY(profile.getBid() == 4000000000u && profile.getCreateTime() == 4000000000u);
        QVERIFY(profile.getExp() == 0 && profile.getLevel() == 0 && profile.getEmail().isEmpty());
        QVERIFY(profile.getExpTotal() == 12 && profile.getNowTime() == 1500000000123u);
        QVERIFY(profile.get48Icon() == "i" && profile.getVip() == 2);
        QVERIFY(profile.property("userName") == "Bob" && profile.getUserName() == "Bob");
        QVERIFY(profile.userExternJson()["ortoken"] == "t");

        profile.setCurrentProfile({{"code", "0"}});
        QVERIFY2(profile.getBid() == 4000000000u && profile.userProfileJson().isEmpty(),
                 "a refused answer is only kept as it came");
        profile.resetCurrentProfile();
        QVERIFY(profile.getBid() == 0 && profile.userExternJson()["ortoken"] == "");
        QVERIFY(profile.userExternJson()["skinsPath"].toString().endsWith("skins"));
        profile.setCurrentProfile(answer(R"({"bid":"1","nowTime":1e300})"));
        QCOMPARE(profile.getNowTime(), 0u);
    }

    void asksForMoneyAndVip()
    {
        // The service's script and answer, what comes of it.
        const QByteArray rows[][3] = {
            {"", info, "true 7 50 3 -2 2"},
            {"", QByteArray(info).replace("\"50\"", "50"), "false 0 0 1 0 0"},
            {"", QByteArray(info).replace(":0,", ":\"0\","), "false 0 0 1 0 0"},
            {"", QByteArray(info).replace("4294967298.9", "1e99"), "true 7 50 3 -2 0"},
            {"", R"({"code":-1,"msg":"none"})", "true 0 0 1 0 0"},
            {"", R"({"code":2,"msg":"no"})", "false 0 0 1 0 0"},
            {"", "[]", "false 0 0 1 0 0"},
            {"status=500", "", "false 0 0 1 0 0"},
        };
        const LogCapture log;
        for (const auto &[script, body, outcome] : rows) {
            CoreRun run;
            run.server.play("/account/info", body, script);
            QueryUserInfo query;
            QSignalSpy finished(&query, &QueryUserInfo::queryFinished);
            query.QueryUser(7);
            QVERIFY(await([&] { return !finished.isEmpty(); }));
            const RivetUserInfo got = query.GetQueryUserInfo();
            if (outcome.startsWith("true"))
                QCOMPARE(QString("true %1 %2 %3 %4 %5")
                             .arg(got.userId)
                             .arg(got.money)
                             .arg(got.vipLevel)
                             .arg(got.vipDaysLeft)
                             .arg(got.vipEndTime),
                         outcome);
            QCOMPARE(finished[0][0].toBool(), outcome.startsWith("true"));

            const QUrlQuery asked(QUrl(run.asked("/account/info").first()).query());
            const auto value = [&](const char *key) { return asked.queryItemValue(key).toUtf8(); };
            const QByteArray text = "Q7K3XeLpmmTzb57" + value("rand") + value("time");
            QCOMPARE(value("sign"),
                     QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());
        }
        QVERIFY(log.has(QtWarningMsg, "request store list info failed, error code:401"));
    }

    void showsTheInfoOfTheUserWhoIsLoggedIn()
    {
        CoreRun run;
        // The answer to the first user comes after that to the second.
        run.server.play("/account/info", info, "trickle=10 pause=20 then");
        RivetUserProfile &profile = *RivetUserProfile::GetInstance();
        QSignalSpy refreshed(&profile, &RivetUserProfile::refreshProfile);
        profile.setCurrentProfile(answer(R"({"bid":"8"})"));
        auto *slow = profile.findChild<QueryUserInfo *>();
        QSignalSpy slowFinished(slow, &QueryUserInfo::queryFinished);
        QVERIFY(await([&] { return !run.server.requests().isEmpty(); }));
        profile.setCurrentProfile(answer(R"({"bid":"7"})"));
        QVERIFY(await([&] { return refreshed.size() == 1; }));
        QVERIFY(slowFinished.isEmpty());
        profile.ModifyMoney(-20);
        QVERIFY(await([&] { return slowFinished.size() == 1; }));
        QVERIFY(refreshed.size() == 1 && profile.GetRealVipLevel() == 0);
        profile.resetCurrentProfile();
        QCOMPARE(profile.GetRivetUserInfoJson(), (QVariantMap{{"user_id", 7u},
                                                              {"money", 30u},
                                                              {"nickName", ""},
                                                              {"gender", 0},
                                                              {"vip_level", 3},
                                                              {"vip_expiredata", 2u},
                                                              {"vip_isExpire", false}}));
        profile.UpdateUserVipInfoCache(4, 9, 1);
        QVERIFY(refreshed.size() == 2 && profile.GetRealVipLevel() == 4);
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RivetUserProfile)
#include "tst_RivetUserProfile.moc"
