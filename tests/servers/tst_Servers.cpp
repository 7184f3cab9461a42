#include <QProcess>
#include <QRandomGenerator>

#include "core/accounts/RivetLoginHost.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/servers/MaskWordHelper.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "core/servers/OnlineSrvInfoReq.h"
#include "core/servers/TipsHelper.h"
#include "support/coresupport/GlobalDebugOptions.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

class tst_Servers : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void listsInstances()
    {
        // What the service answers; the end; all instances, those for 1.8, and what stays.
        const QByteArray rows[][2] = {
            {R"(cb({"code":"0","data":[{"id":"3","ver":"1.8.0"},{"id":"4","ver":"x"},5,{},)"
             R"({"id":"0"},{"name":"n"}]});)",
             "true: 3 4 9: 3 9: 3 4"},
            {R"(({"code":0,"data":[]}))", "true: 9: 9: 9"},
            {R"(({"code":"1","data":[{"id":"3"}]}))", "false: 9: 9: 9"},
            {"", "false: 9: 9: 9"}};
        for (const auto &[body, expected] : rows) {
            CoreRun run;
            const QByteArray user = R"({"code":"1","oruser_profile":{"user":{"bid":"7"}}})";
            run.server.play("/account/login", user, "");
            run.server.play("/servers/mine?bid=7", body, body.isEmpty() ? "status=500" : "");
            QVERIFY(FS::writeFile(run.file("myMcGamelist.cache"),
                                  R"({"code":0,"data":[{"id":"9","name":"n","ver":"1.8"}]})"));
            QString told;
            const auto tell = [&told](const QList<uint> &ids) {
                for (uint id = 0; id < 10; ++id)
                    told += ids.contains(id) ? QString(" %1").arg(id) : id == 0 ? ":" : "";
            };
            auto *list = MyMcGameInstMgr::GetInstance();
            connect(list, &MyMcGameInstMgr::updateFinished,
                    [&told](bool success) { told += success ? "true" : "false"; });
            list->updateList();
            RivetLoginHost::GetInstance()->LogIn("b", false, false, "p");
            QVERIFY(await([] { return RivetLoginHost::GetInstance()->status() == 3; }));
            list->updateList();
            QVERIFY(await([&told] { return !told.isEmpty(); }));
            tell(list->getGameInstIdList());
            tell(list->getGameInstIdList("1.7-1.9"));
            QCOMPARE(list->getGameInstName(9) + list->getGameInstName(5), "n");
            const QString cache = run.file("myMcGamelist.cache");
            QVERIFY2(!FS::readFile(cache).value().startsWith('{'), "saved after each answer");
            QVERIFY(QFile::remove(cache)); // and at the end
            run.restart();
            tell(MyMcGameInstMgr::GetInstance()->getGameInstIdList());
            QCOMPARE(told, expected);
        }
    }

    void listsOnlineServers()
    {
        const auto answer = [](const QByteArray &server) {
            return R"({"code":65536,"server":[{},{"status":"0","name":"n","ver":"v",)" + server +
                   "}]}";
        };
        const QByteArray nine = answer(R"("id":"9","address":{"a":"h:9"},"mods":"")");
        const QByteArray good = answer(
            R"("id":"1","address":{"b":"h:2","a":"g::1","c":""},"mods":"5;MODS;1201;x;1202;Saves;)"
            R"(7-31;7;7-32;8-1-2;1203"},{"status":"1","id":"2","name":"n","ver":"","mods":"7-1",)"
            R"("address":{"a":"h:3"}},{"status":"0","id":"3","name":"n","ver":"","address":{})");
        QList<QByteArray> bodies{good, good, R"({"code":0,"server":[]})", R"({"code":1})", ""};
        for (const char *bad :
             {R"("id":"4","address":{"a":"h"},"mods":"")", R"("id":4)",
              R"("id":"4","address":{"a":""},"mods":"")", R"("id":"4","address":{"a":"h:1"})"})
            bodies << answer(bad);
        for (const QByteArray &body : qAsConst(bodies)) {
            const bool isGood = body == good, isFilterOff = &body == &bodies.at(0);
            g_GlobalDebugOptions.onlineAddressFilter = isFilterOff;
            CoreRun run;
            run.server.play("/servers/lan", body, body.isEmpty() ? "status=500" : "");
            QVERIFY(FS::writeFile(run.file("LANServerlist.cache"), nine));
            OnlineSrvInfoReq request;
            QSignalSpy finished(&request, &OnlineSrvInfoReq::requestFinished);
            for (const int ends : {1, isGood ? 1 : 2}) {
                request.startRequest();
                request.startRequest();
                QVERIFY(await([&] { return finished.size() == ends; }));
            }
            OnlineSrvInfoReq later; // reaches the service after what should not have been sent
            later.startRequest();
            QVERIFY(await([&] { return !later.getOnlineSrvInfoList().isEmpty(); }));
            QCOMPARE(run.asked("/lan").size(), finished.size() + 1);
            QVERIFY(finished[0][0] == isGood);
            QString told;
            for (uint id = 0; id < 10; ++id)
                told += request.getSrvObject(id).isEmpty() ? "" : QString("%1 ").arg(id);
            for (const tagOnlineSrvInfo &info : request.getOnlineSrvInfoList())
                for (const tagOnlineSrvAddr &address : info.addresses)
                    told += QString("%1:%2:%3 ").arg(info.id).arg(address.host).arg(address.port);
            const QString all = isFilterOff ? "1 2 3 1:g:1 1:h:2 2:h:3 " : "1 3 1:g:1 1:h:2 ";
            QCOMPARE(told, isGood ? all : "9 9:h:9 ");
            QCOMPARE(FS::readFile(run.file("LANServerlist.cache")), isGood ? good : nine);
            QCOMPARE(request.getOnlineSrvInfoList()[0].saves.value(7).size(), isGood ? 2 : 0);
            const auto mods = OnlineMapResConfig::GetInstance()->GetSrvDefaultResConfig("v");
            QCOMPARE((mods == decltype(mods){4294968497, 4294968498}), isGood);
        }
    }

    void readsTheInstalledListOrItsCopy()
    {
        const QString installed = QCoreApplication::applicationDirPath() + "/ComConfig/striCtn.ini";
        const QString list = installed + ".txt";
        QVERIFY(FS::writeFile(list, "\ufeffab\n\r\n脏话\r\nlong enough for blocks"));
        QCOMPARE(QProcess::execute("rivet-words", {list, installed}), 0);
        const QByteArray good = FS::readFile(installed).value();
        const QByteArray garbled = QByteArray(good).replace(20, 1, "~");
        for (const QByteArray &data : {good, QByteArray(), good.left(17), garbled, {"none"}}) {
            CoreRun run;
            QVERIFY(data == "none" ? QFile::remove(installed) : FS::writeFile(installed, data));
            QVERIFY(FS::writeFile(run.file("FilterSt.ini"), "\r\nx\r\n脏"));
            const QString masked = MaskWordHelper::GetInstance()->stringMask("xabyab脏话");
            QCOMPARE(masked, data == good ? "x**y****" : "*abyab*话");
            run.restart();
            QCOMPARE(FS::readFile(run.file("FilterSt.ini")),
                     data == good ? "ab\r\n脏话\r\nlong enough for blocks\r\n" : "\r\nx\r\n脏\r\n");
        }
    }

    void masksAsIfEachWordWereReplacedInTurn()
    {
        QRandomGenerator random(7);
        const auto text = [&](int most) {
            const auto digits = QByteArray::number(random.generate64(), 3).replace('2', '*');
            return QString(digits.right(random.bounded(1, most + 1)));
        };
        for (int round = 0; round < 40; ++round) {
            CoreRun run;
            QStringList words;
            while (words.size() < 12)
                words << text(5);
            QVERIFY(FS::writeFile(run.file("FilterSt.ini"), words.join("\r\n").toUtf8()));
            for (int texts = 0; texts < 200; ++texts) {
                const QString given = text(40);
                QString expected = given;
                for (const QString &word : qAsConst(words))
                    expected.replace(word, QString(word.size(), '*'));
                QCOMPARE(MaskWordHelper::GetInstance()->stringMask(given), expected);
            }
            QVERIFY(TipsHelper::GetInstance()->getRandTips().startsWith("Tips."));
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Servers)
#include "tst_Servers.moc"
