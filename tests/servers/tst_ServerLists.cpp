#include "core/accounts/RivetLoginHost.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "core/servers/OnlineSrvInfoReq.h"
#include "support/coresupport/GlobalDebugOptions.h"
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

    void listsOnlineServers()
    {
        const auto server = [](const char *id, const char *more) {
            return QByteArray(R"({"status":"0","name":"n","id":")") + id + R"(","ver":"v)" + id +
                   "\"," + more + "},";
        };
        const QByteArray kept =
            R"({"code":0,"server":[)" + server("9", R"("address":{"a":"h:9"},"mods":"")") + "{}]}";
        const QByteArray full =
            server("1", R"("address":{"b":"h:2","a":"g::1","c":""},"mods":)"
                        R"("5;MODS;1201;x;1202;Saves;7-31;7;7-32;8-1-2;1203")") +
            R"({"status":"1","id":"2","name":"n","ver":"","mods":"7-1","address":{"a":"h:3"}},)" +
            server("3", R"("address":{})");
        const QString nine = "9 h:9", log = "|parse online address failed";
        // What the service says; the servers with their addresses; the known ids; the log.
        const std::tuple<QByteArray, QString, QString, QString> rows[] = {
            {R"({"code":0,"server":[)" + full + "{}]}", "1 g:1 h:22 h:3", "1 2 3", ""},
            {R"({"code":65536,"server":[)" + full + "{}]}", "1 g:1 h:2", "1 3", ""},
            {R"({"code":0,"server":[)" + server("4", R"("address":{"a":"h"})") + "5]}", nine, "9",
             "address format is incorrect|parse address failed" + log},
            {R"({"code":0,"server":[)" + server("4", R"("address":{"a":""})") + "5]}", nine, "9",
             "can not get address|parse address failed" + log},
            {R"({"code":0,"server":[)" + server("4", R"("address":{"a":"h:1"})") + "5]}", nine, "9",
             "parse online saves failed.mods: the value is no string|parse saves failed" + log},
            {R"({"code":0,"server":[{"status":0}]})", nine, "9",
             "parse online server address failed.status: the value is no string" + log},
            {R"({"code":0,"server":[]})", nine, "9", "server array is empty" + log},
            {R"({"code":1,"server":[{}]})", nine, "9", log.mid(1)},
            {"", nine, "9", "failed with errno 401"}};
        for (const auto &[body, servers, ids, lines] : rows) {
            CoreRun run;
            run.server.play("/servers/lan", body, body.isEmpty() ? "status=500" : "");
            const QString cache = run.file("LANServerlist.cache");
            QVERIFY(FS::writeFile(cache, kept));
            g_GlobalDebugOptions.onlineAddressFilter = &body == &std::get<0>(rows[0]);
            const bool isGood = lines.isEmpty();
            LogCapture logged;
            OnlineSrvInfoReq request;
            QSignalSpy finished(&request, &OnlineSrvInfoReq::requestFinished);
            for (int calls = 1; calls <= 2; ++calls) {
                request.startRequest();
                request.startRequest();
                QVERIFY(await([&] { return finished.size() == (isGood ? 1 : calls); }));
                QVERIFY(finished.last()[0] == isGood && request.isUpdated() == isGood);
                QCOMPARE(run.asked("/lan").size(), finished.size());
                QString shown, known;
                for (const tagOnlineSrvInfo &info : request.getOnlineSrvInfoList()) {
                    shown += QString::number(info.id);
                    for (const tagOnlineSrvAddr &address : info.addresses)
                        shown += QString(" %1:%2").arg(address.host).arg(address.port);
                }
                for (uint id = 0; id < 10; ++id)
                    known += request.getSrvObject(id).isEmpty() ? "" : QString(" %1").arg(id);
                QCOMPARE(shown + known, servers + " " + ids);
            }
            QCOMPARE(logged.lines().mid(logged.lines().size() / 2).join('|'), lines);
            QCOMPARE(FS::readFile(cache).value(), isGood ? body : kept);
            const auto *config = OnlineMapResConfig::GetInstance();
            QCOMPARE(config->GetSrvDefaultResConfig("v1"),
                     isGood ? QSet<quint64>({1ULL << 32 | 1201, 1ULL << 32 | 1202})
                            : QSet<quint64>());
            using Saves = QMap<uint, QList<uint>>;
            QCOMPARE(request.getOnlineSrvInfoList()[0].saves,
                     isGood ? Saves({{7, {31, 32}}}) : Saves());
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_ServerLists)
#include "tst_ServerLists.moc"
