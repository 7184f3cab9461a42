#include "core/accounts/RivetUserProfile.h"
#include "core/servers/RivetSettingInfo.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

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
            {"gone", "", full, "early same late", full, "netupdateInfo failed with errno 1"},
            {"", "[1]", full, "none", full, "parseInfo faied. json:[1]"},
            {"", "\ufeff{}", full, "", "{}", ""},
            {"gone", "", "", "none", "", "netupdateInfo failed with errno 1"}};
        for (const auto &[script, body, before, contacts, after, line] : rows) {
            CoreRun run;
            run.server.play("/launcher/settings", body, script);
            QVERIFY(FS::writeFile(run.file("settinginfo.cache"), before));
            const LogCapture log;
            RivetSettingInfo &info = *RivetSettingInfo::GetInstance();
            QSignalSpy finished(&info, &RivetSettingInfo::updateInfoFinished);
            info.updateInfo();
            info.updateInfo();
            QVERIFY(await([&] { return !finished.isEmpty(); }) && run.asked("/").size() <= 1);
            QCOMPARE(finished[0][0].toBool(), info.isInfoUpdated());
            QStringList names = info.isInfoUpdated() ? QStringList() : QStringList("none");
            for (const auto &contact : info.customerServiceInfoList())
                names << contact->name;
            QCOMPARE(names.join(' '), contacts);
            QCOMPARE(FS::readFile(run.file("settinginfo.cache")).value(), after);
            QCOMPARE(log.lines().join('|'), line);
            const QVariantMap button = RivetUserProfile::GetInstance()->joinServerBtnInfo();
            QCOMPARE(button.size(), names.size() == 3 ? 7 : 0);
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RivetSettingInfo)
#include "tst_RivetSettingInfo.moc"
