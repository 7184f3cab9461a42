#include "core/accounts/RivetLoginHost.h"
#include "core/config/OnlineMapResConfig.h"
#include "core/servers/MyMcGameInstMgr.h"
#include "core/servers/OnlineSrvInfoReq.h"
#include "support/coresupport/GlobalDebugOptions.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/CoreRun.h"

class tst_ServerLists : public QObject
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
            const auto tell = [&told](QList<uint> ids) {
                std::sort(ids.begin(), ids.end());
                told += ":";
                for (const uint id : ids)
                    told += QString(" %1").arg(id);
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
            run.restart();
            tell(MyMcGameInstMgr::GetInstance()->getGameInstIdList());
            QCOMPARE(told, expected);
        }
    }

    void listsOnlineServers()
    {
        const QByteArray
            begin = R"({"code":65536,"server":[{},{"status":"0","name":"n","ver":"v",)",
            nine = begin + R"("id":"9","address":{"a":"h:9"},"mods":""}]})",
            good = begin +
                   R"("id":"1","address":{"b":"h:2","a":"g::1","c":""},"mods":)"
                   R"("5;MODS;1201;x;1202;Saves;7-31;7;7-32;8-1-2;1203"},{"status":"1","id":"2",)"
                   R"("name":"n","ver":"","mods":"7-1","address":{"a":"h:3"}},)"
                   R"({"status":"0","id":"3","name":"n","ver":"","address":{}}]})";
        const QByteArray bodies[] = {good,
                                     begin + R"("id":"4","address":{"a":"h"},"mods":""}]})",
                                     begin + R"("id":"4","address":{"a":""},"mods":""}]})",
                                     begin + R"("id":"4","address":{"a":"h:1"}}]})",
                                     begin + R"("id":4}]})",
                                     R"({"code":0,"server":[]})",
                                     R"({"code":1,"server":[{}]})",
                                     "",
                                     good};
        for (const QByteArray &body : bodies) {
            const bool isGood = body == good;
            bool &isFilterOff = g_GlobalDebugOptions.onlineAddressFilter;
            isFilterOff = &body == bodies;
            CoreRun run;
            run.server.play("/servers/lan", body, body.isEmpty() ? "status=500" : "");
            QVERIFY(FS::writeFile(run.file("LANServerlist.cache"), nine));
            OnlineSrvInfoReq request;
            QSignalSpy finished(&request, &OnlineSrvInfoReq::requestFinished);
            for (int calls = 1; calls <= 2; ++calls) {
                request.startRequest();
                request.startRequest();
                QVERIFY(await([&] { return finished.size() == (isGood ? 1 : calls); }));
            }
            OnlineSrvInfoReq later; // reaches the service after what should not have been sent
            later.startRequest();
            QVERIFY(await([&] { return !later.getOnlineSrvInfoList().isEmpty(); }));
            QCOMPARE(run.asked("/lan").size(), isGood ? 2 : 3);
            QVERIFY(finished.last()[0] == isGood && request.isUpdated() == isGood);
            QString told;
            for (uint id = 0; id < 10; ++id)
                told += request.getSrvObject(id).isEmpty() ? "" : QString("%1 ").arg(id);
            for (const tagOnlineSrvInfo &info : request.getOnlineSrvInfoList())
                for (const tagOnlineSrvAddr &address : info.addresses)
                    told += QString("%1:%2:%3 ").arg(info.id).arg(address.host).arg(address.port);
            const QString all = isFilterOff ? "1 2 3 1:g:1 1:h:2 2:h:3 " : "1 3 1:g:1 1:h:2 ";
            QCOMPARE(told, isGood ? all : "9 9:h:9 ");
            QCOMPARE(FS::readFile(run.file("LANServerlist.cache")), isGood ? good : nine);
            const auto saves = request.getOnlineSrvInfoList()[0].saves;
            const auto mods = OnlineMapResConfig::GetInstance()->GetSrvDefaultResConfig("v");
            QCOMPARE((saves == decltype(saves){{7, {31, 32}}}), isGood);
            QCOMPARE((mods == decltype(mods){4294968497, 4294968498}), isGood);
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_ServerLists)
#include "tst_ServerLists.moc"
