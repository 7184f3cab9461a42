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
            R"({"btn":[5,{},{"id":"2"},{"name":"服主加盟","link":"l"}],"kefu":[)"
            R"({"name":"late","url":"u","sort":9},{"name":"x"},{"url":"x"},)"
            R"({"name":"early","url":"u"},{"name":"same","url":"u"}]})";
        // What the service says, the cache before, contacts, cache after, log line.
        const QByteArray rows[][6] = {
            {"", full + "\n", "", "early same late", full, ""},
            {"status=500", "", full, "early same late", full,
             "netupdateInfo failed with errno 401"},
            {"", "[1]", full, "none", full, "parseInfo faied. json:[1]"},
            {"", "\ufeff{}", full, "", "{}", ""},
            {"gone", "", "[]", "none", "[]", "netupdateInfo failed with errno 1"}};
        for (const auto &[script, body, before, contacts, after, line] : rows) {
            CoreRun run;
            run.server.play("/launcher/settings", body, script);
            QVERIFY(FS::writeFile(run.file("settinginfo.cache"), before));
            const LogCapture log;
            RivetSettingInfo &info = *RivetSettingInfo::GetInstance();
            QSignalSpy finished(&info, &RivetSettingInfo::updateInfoFinished);
            for (int calls = 0; calls < 3; ++calls) {
                info.updateInfo();
                QVERIFY(calls == 0 || await([&] { return finished.size() == 1; }));
            }
            QVERIFY2(run.asked("/").size() <= (contacts == "none" ? 2 : 1), "never two at a time");
            QVERIFY(finished[0][0].toBool() == (contacts != "none"));
            QStringList names = info.isInfoUpdated() ? QStringList() : QStringList("none");
            for (const auto &contact : info.customerServiceInfoList())
                names << contact->name;
            QCOMPARE(names.join(' '), contacts);
            QCOMPARE(FS::readFile(run.file("settinginfo.cache")).value(), after);
            QCOMPARE(log.lines().join('|'), line);
            const QVariantMap button = RivetUserProfile::GetInstance()->joinServerBtnInfo();
            QVERIFY(names.size() == 3 ? button["link"] == "l" && button.size() == 7
                                      : button.isEmpty());
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RivetSettingInfo)
#include "tst_RivetSettingInfo.moc"
