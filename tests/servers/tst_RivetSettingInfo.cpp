#include "core/accounts/RivetUserProfile.h"
#include "core/servers/RivetSettingInfo.h"
#include "tests/support/Await.h"
#include "tests/support/CoreRun.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

class tst_RivetSettingInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsTheAnswerOrTheCache()
    {
        const QByteArray full =
            QByteArray(R"({"btn":[{"name":"a","link":"l","id":"1"},{"name":"a"},{"id":"2"},5,{}],
            "kefu":[{"name":"late","url":"u","sort":9},{"name":"x"},{"url":"x"},
                    {"name":"early","url":"u"},{"name":"same","url":"u","sort":"7"}]})")
                .simplified();
        // What the service says, what lies in the cache before, contacts, cache after, log line.
        const struct
        {
            QByteArray script, body, cacheBefore, contacts, cacheAfter, line;
        } rows[] = {
            {"", full + "\n", "", "early same late", full, ""},
            {"status=500", "", full, "early same late", full,
             "netupdateInfo failed with errno 401"},
            {"", "[1]", full, "none", full, "parseInfo faied. json:[1]"},
            {"", "\ufeff{}", full, "", "{}", ""},
            {"gone", "", "[]", "none", "[]", "netupdateInfo failed with errno 1"},
            {"gone", "", "", "none", "", "netupdateInfo failed with errno 1"},
        };
        for (const auto &row : rows) {
            CoreRun run;
            run.server.play("/launcher/settings", row.body, row.script);
            const QString cache = run.file("settinginfo.cache");
            if (!row.cacheBefore.isEmpty())
                QVERIFY(FS::writeFile(cache, row.cacheBefore));
            const LogCapture log;
            RivetSettingInfo &info = *RivetSettingInfo::GetInstance();
            const bool isUpdated = row.contacts != "none";
            for (int i = 0; i < 2; ++i)
                info.updateInfo();
            QSignalSpy finished(&info, &RivetSettingInfo::updateInfoFinished);
            QVERIFY(await([&] { return finished.size() == 1; }));
            QVERIFY(finished[0][0].toBool() == isUpdated && info.isInfoUpdated() == isUpdated);
            QStringList contacts;
            for (const auto &contact : info.customerServiceInfoList())
                contacts << contact->name;
            QCOMPARE(contacts.join(' '), isUpdated ? row.contacts : "");
            QCOMPARE(FS::readFile(cache).value_or(""), row.cacheAfter);
            QCOMPARE(log.lines().join('|'), row.line);
            QVERIFY(!info.getrivetButtonInfoByName("A"));
            if (contacts.size() == 3)
                QCOMPARE(info.getrivetButtonInfoByName("a")->id, "1");
            info.updateInfo();
            QVERIFY2(run.asked("/").size() <= 1, "one at a time, and none once it is known");
        }
    }

    void showsTheButtonOfServerOwners()
    {
        CoreRun run;
        run.server.play("/launcher/settings", R"({"btn":[{"name":"服主加盟","link":"l"}]})", "");
        RivetSettingInfo &info = *RivetSettingInfo::GetInstance();
        RivetUserProfile &profile = *RivetUserProfile::GetInstance();
        QVERIFY(profile.joinServerBtnInfo().isEmpty());
        info.updateInfo();
        QVERIFY(await([&] { return info.isInfoUpdated(); }));
        QVERIFY(profile.joinServerBtnInfo().size() == 7);
        QCOMPARE(profile.joinServerBtnInfo()["link"], "l");
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RivetSettingInfo)
#include "tst_RivetSettingInfo.moc"
