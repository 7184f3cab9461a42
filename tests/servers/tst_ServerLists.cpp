#include "core/accounts/RivetLoginHost.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

namespace {

QString text(QList<uint> ids)
{
    std::sort(ids.begin(), ids.end());
    QStringList texts;
    for (const uint id : ids)
        texts << QString::number(id);
    return texts.join(' ');
}

} // namespace

class tst_ServerLists : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void listsInstances()
    {
        // How the service answers and with what; the end; all instances and those for 1.8; what
        // the next start knows; the log.
        const QByteArray rows[][7] = {
            {"",
             R"(cb({"code":"0","data":[{"id":"3","ver":"1.8.0"},{"id":"4","ver":"x"},5,{},)"
             R"({"id":"0"},{"name":"n"}]});)",
             "true", "3 4 9", "3 9", "3 4", "resource version format is wrong, ignored"},
            {"", R"(({"code":0,"data":[]}))", "true", "9", "9", "9", ""},
            {"", R"(({"code":"1","data":[{"id":"3"}]}))", "false", "9", "9", "9",
             R"(parse game instance list info failed. json:{"code":"1","data":[{"id":"3"}]})"
             "(maybe because your game instance is empty)"},
            {"", R"({"code":0})", "false", "9", "9", "9",
             "unexpected data format!|parse game instance list info failed. json:"
             "(maybe because your game instance is empty)"},
            {"status=500", "", "false", "9", "9", "9", "failed with errno 401"}};
        for (const auto &[script, body, end, all, fitting, kept, lines] : rows) {
            CoreRun run;
            const QByteArray user = R"({"code":"1","oruser_profile":{"user":{"bid":"7"}}})";
            run.server.play("/account/login", user, "");
            run.server.play("/servers/mine?bid=7", body, script);
            QVERIFY(FS::writeFile(run.file("myMcGamelist.cache"),
                                  R"({"code":0,"data":[{"id":"9","name":"n","ver":"1.8"}]})"));
            LogCapture log;
            auto *manager = MyMcGameInstMgr::GetInstance();
            QSignalSpy finished(manager, &MyMcGameInstMgr::updateFinished);
            manager->updateList();
            QCOMPARE(log.lines().join('|'), "user have not login");
            RivetLoginHost &host = *RivetLoginHost::GetInstance();
            host.LogIn("b", false, false, "p");
            QVERIFY(await([&] { return host.status() == RivetLoginHost::LoginStatusLoggedIn; }));
            manager->updateList();
            QVERIFY(await([&] { return finished.size() == 1; }));
            QCOMPARE(finished[0][0].toString(), end);
            QCOMPARE(text(manager->getGameInstIdList()), all);
            QCOMPARE(text(manager->getGameInstIdList("1.7-1.9")), fitting);
            QVERIFY(manager->getGameInstName(9) == "n" && manager->getGameInstName(5).isEmpty());
            QCOMPARE(log.lines().mid(1).filter(QRegularExpression("^(?!request )")).join('|'),
                     lines);
            run.restart();
            QCOMPARE(text(MyMcGameInstMgr::GetInstance()->getGameInstIdList()), kept);
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_ServerLists)
#include "tst_ServerLists.moc"
