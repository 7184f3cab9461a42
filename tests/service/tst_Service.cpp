#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpSocket>

#include "core/accounts/OrMCAuthenticateTask.h"
#include "core/accounts/RivetLoginHost.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserRegister.h"
#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "core/resources/GameClientListInfo.h"
#include "core/resources/JavaListInfo.h"
#include "core/resources/ResObj.h"
#include "core/resources/ResUpdateTask.h"
#include "core/servers/RivetSettingInfo.h"
#include "support/coresupport/HttpRequestTask.h"
#include "tests/support/CoreRun.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestFiles.h"

namespace {

using Headers = QHash<QByteArray, QByteArray>;

struct Reply
{
    int status = 0; ///< 0 for a broken connection
    QByteArray body;
    Headers headers = {};

    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    QString value(const char *key) const
    {
        return json()[QLatin1String(key)].toVariant().toString();
    }
};

/// The service as a child process, with a copy of the sample.
struct Service
{
    Service()
    {
        const QDir sample(SERVICE_SAMPLE);
        QDirIterator it(sample.path(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            write(sample.relativeFilePath(path), FS::readFile(path).value());
        }
        start();
    }
    ~Service() { stop(); }
    void start(const QStringList &options = {})
    {
        process.start(SERVICE_PROGRAM, options + QStringList(dir.filePath("data")));
        QByteArray lines;
        while (lines.count('\n') < 2 && process.waitForReadyRead())
            lines += process.readAllStandardOutput();
        const auto words = lines.simplified().split(' ');
        base = words.value(2);
        gamePort = words.last().mid(words.last().indexOf(':') + 1).toUShort();
    }
    void stop()
    {
        process.terminate();
        process.waitForFinished();
    }
    void write(const QString &name, const QByteArray &content) const
    {
        QVERIFY(FS::writeFile(dir.filePath("data/" + name), content));
    }
    QNetworkReply *begin(const QByteArray &target, const Headers &headers = {})
    {
        QNetworkRequest request(QUrl::fromEncoded(base + target));
        for (auto it = headers.begin(); it != headers.end(); ++it)
            request.setRawHeader(it.key(), it.value());
        return manager.get(request);
    }
    static Reply end(QNetworkReply *reply)
    {
        const bool isWhole = await([&] { return reply->isFinished(); }) &&
                             (reply->error() < 1 || reply->error() > 99);
        const auto status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        Reply result{isWhole ? status.toInt() : 0, reply->readAll()};
        for (const auto &[name, value] : reply->rawHeaderPairs())
            result.headers.insert(name.toLower(), value);
        reply->deleteLater();
        return result;
    }
    Reply get(const QByteArray &target, const Headers &headers = {})
    {
        return end(begin(target, headers));
    }
    QString money() { return get(signedTarget("/account/info?bid=1001")).value("money"); }

    static QByteArray signedTarget(const QByteArray &target, qint64 age = 0, int rand = 7)
    {
        const QByteArray bid = QUrlQuery(QUrl(target)).queryItemValue("bid").toUtf8();
        const QByteArray time = QByteArray::number(QDateTime::currentSecsSinceEpoch() - age);
        const QByteArray text = "Q7K3XeLpmmTzb5" + bid + "7" + time;
        return target + "&rand=" + QByteArray::number(rand) + "&time=" + time +
               "&sign=" + QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex();
    }

    const QTemporaryDir dir;
    QNetworkAccessManager manager;
    QProcess process;
    QByteArray base;
    quint16 gamePort = 0;
};

/// The core beside the service.
struct World : CoreRun
{
    World()
    {
        ServiceUrls::setBaseAddress(service.base);
        Environment::GetInstance()->settings()->setValue("DataPath", folder.path());
    }
    template <typename Object, typename Signal>
    bool hears(Object *object, Signal signal, const std::function<void()> &act)
    {
        QSignalSpy spy(object, signal);
        act();
        return await([&] { return !spy.isEmpty(); });
    }
    /// "ok", or what the host is told.
    QString logIn(const QString &user, const QString &password)
    {
        auto *host = RivetLoginHost::GetInstance();
        host->LogOut();
        QString outcome;
        const QObject context;
        QObject::connect(host, &RivetLoginHost::loginFailed, &context,
                         [&](const QString &, const QString &why) { outcome = why; });
        QObject::connect(host, &RivetLoginHost::loginSuccess, &context, [&] { outcome = "ok"; });
        host->LogIn(user, false, false, password);
        await([&] { return !outcome.isEmpty(); });
        return outcome;
    }
    QString enrol(const QString &user, const QString &password, const QString &code)
    {
        auto *registration = RivetUserRegister::GetInstance();
        QString outcome;
        const QObject context;
        QObject::connect(registration, &RivetUserRegister::registerFailed, &context,
                         [&](const QString &, const QString &why) { outcome = why; });
        QObject::connect(registration, &RivetUserRegister::registerSuccess, &context,
                         [&] { outcome = "ok"; });
        registration->registerAccount(user, password, code);
        await([&] { return !outcome.isEmpty(); });
        return outcome;
    }
    int enterGame(const QString &query)
    {
        HttpRequestTask request(service.base + "/game/auth?" + query, nullptr, 20'000, 0, nullptr);
        request.SetNetworkAccessManager(Environment::GetInstance()->getShareNetworkAccessMgr());
        OrMCAuthenticateTask task;
        task.SetHttpRequestTask(&request);
        hears(&task, &TaskAbstract::finished, [&] { task.start(); });
        return task.GetAuthenticateStatus();
    }

    Service service;
};

} // namespace

class tst_Service : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void theCoreReadsItsLists()
    {
        World world;
        auto *clients = GameClientListInfo::GetInstance();
        auto *javas = JavaListInfo::GetInstance();
        auto *settings = RivetSettingInfo::GetInstance();
        QVERIFY(world.hears(clients, &GameClientListInfo::updateListFinished,
                            [&] { clients->updateList(); }));
        QVERIFY(
            world.hears(javas, &JavaListInfo::updateListFinished, [&] { javas->updateList(); }));
        QVERIFY(world.hears(settings, &RivetSettingInfo::updateInfoFinished,
                            [&] { settings->updateInfo(); }));
        QCOMPARE(clients->gameClientInfo("1.8")["id"].toInt(), 300);
        QCOMPARE(javas->javaInfoForSystem(false)["id"].toInt(), 402);
        QCOMPARE(settings->getrivetButtonInfoByName("服主加盟")->link,
                 world.service.base + "/files/hello.txt");
        QCOMPARE(settings->customerServiceInfoList()[0]->sort, 1);

        const QByteArray payload = QByteArray(2'000'000, 'm') + "end";
        world.service.write("files/mods/1201.zip", payload);
        world.service.get("/control?path=/files/&cutAt=700000&times=1");
        ResObj mod(1201, ResTypeMods, nullptr);
        mod.install();
        QVERIFY(await([&] { return mod.installStatus() >= ResUpdateTask::ResInstallDone; }));
        QCOMPARE(FS::readFile(world.folder.filePath("resources/mods/1201")).value(), payload);
        QVERIFY(mod.name() == "Minimap" && mod.versionObj().highVersion == "1.8");
        QCOMPARE(mod.dependsOnList(), QList<quint64>{0x1'0000'04b2});
        const QJsonObject stats = world.service.get("/control/stats?path=/files/").json();
        QCOMPARE(stats["requests"].toInt(), 2); // it went on where the first broke off
        QCOMPARE(stats["bytes"].toInt(), payload.size());
    }

    void theCoreReadsAccounts()
    {
        World world;
        const QString wrong = "invalid user name or password";
        QCOMPARE(world.logIn("nobody", "diamond"), wrong);
        QCOMPARE(world.logIn("steve@rivet.example", "Diamond"), wrong);
        auto *profile = RivetUserProfile::GetInstance();
        QVERIFY(world.hears(profile, &RivetUserProfile::refreshProfile, [&] {
            QCOMPARE(world.logIn("steve@rivet.example", "diamond"), "ok");
        }));
        QVERIFY(profile->getBid() == 1001 && profile->getLevel() == 7);
        QVERIFY(profile->getExpTotal() == 5000 && profile->getNowTime() > profile->getCreateTime());
        QCOMPARE(profile->getNickName() + profile->getLevelName(), "SteveMiner");
        QCOMPARE(profile->GetRivetUserInfo().money, 500);

        const QString elsewhere = profile->orToken();
        world.logIn("guest@rivet.example", "guest");
        const QString guest = profile->orToken();
        QCOMPARE(world.logIn("steve@rivet.example", "diamond"), "ok");
        const QPair<QString, int> rows[] = {
            {"bid=1001&token=" + profile->orToken(), 2},
            {"bid=1001&version=1.0.1&token=" + profile->orToken(), 2},
            {"bid=1001&token=" + elsewhere, 3},
            {"bid=1002&token=" + guest, 4},
            {"bid=1001&version=0.9&token=" + profile->orToken(), 5},
            {"bid=1003&token=" + guest, 1},
            {"bid=1001", 1},
        };
        for (const auto &[query, status] : rows)
            QVERIFY2(world.enterGame(query) == status, qPrintable(query));

        QCOMPARE(world.enrol("alex+1@x@y", "pw", "1111"), "wrong verification code");
        QCOMPARE(
            world.service.get("/account/register?user=a&password=b&name=c&type=1").value("code"),
            "15");
        QCOMPARE(world.enrol("alex+1@x@y", "pw", "2580"), "ok");
        QCOMPARE(world.enrol("alex+1@x@y", "pw", "2580"), "the user name is taken");
        QCOMPARE(world.enrol("steve@rivet.example", "pw", "2580"), "the user name is taken");
        world.service.stop();
        world.service.start();
        ServiceUrls::setBaseAddress(world.service.base);
        QVERIFY(world.hears(profile, &RivetUserProfile::refreshProfile,
                            [&] { QCOMPARE(world.logIn("alex+1@x@y", "pw"), "ok"); }));
        QCOMPARE(profile->getNickName() + profile->getLevelName(), "alex+1@x@Newcomer");
        QVERIFY(profile->getBid() == 1003 && profile->GetRivetUserInfo().money == 100);
    }

    void refusesWrongSignatures()
    {
        Service service;
        for (const QByteArray target : {"/account/info?bid=1001", "/vip/welfare?bid=1001",
                                        "/store/buy?bid=1001&prop=12&norm=1"}) {
            const QByteArray good = Service::signedTarget(target);
            const QPair<QByteArray, QString> rows[] = {
                {good + "0", "14"},
                {good.left(good.size() - 1), "14"},
                {Service::signedTarget(target, 0, 8), "14"},
                {Service::signedTarget(target, 700), "14"},
                {Service::signedTarget(target, -700), "14"},
                {QByteArray(good).replace("1001", "1002"), "14"},
                {target, "11"},
                {good, "0"},
            };
            for (const auto &[asked, code] : rows)
                QCOMPARE(service.get(asked).value("code"), code);
        }
        QCOMPARE(service.money(), "495");
    }

    void sellsProps()
    {
        Service service;
        const auto compact = [](const QJsonValue &value) {
            return QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact);
        };
        struct Row
        {
            QByteArray order;
            QString code, count, money;
            int days; // until the end
        };
        const Row rows[] = {
            {"prop=12&norm=2", "0", "13", "460", 0}, {"prop=12&norm=3", "18", "", "460", 0},
            {"prop=11&norm=1", "0", "1", "400", 30}, {"prop=11&norm=1", "0", "1", "340", 60},
            {"prop=14&norm=1", "0", "1", "240", 30}, {"prop=15&norm=1", "18", "", "240", 0},
            {"prop=99&norm=1", "18", "", "240", 0},  {"prop=x&norm=1", "11", "", "240", 0},
        };
        for (const Row &row : rows) {
            const Reply reply =
                service.get(Service::signedTarget("/store/buy?bid=1001&" + row.order));
            QVERIFY2(reply.value("code") == row.code, reply.body);
            QCOMPARE(reply.value("count"), row.count);
            QCOMPARE(reply.value("deadLine").toInt(), row.days);
            QCOMPARE(service.money(), row.money);
        }
        const Reply info = service.get(Service::signedTarget("/account/info?bid=1001"));
        QCOMPARE(info.value("VIPlevel") + info.value("deadLine"), "230");

        // Orders at the same time do not spend the money twice.
        QList<QNetworkReply *> orders;
        for (int i = 0; i < 12; ++i)
            orders << service.begin(Service::signedTarget("/store/buy?bid=1001&prop=12&norm=2"));
        QStringList codes;
        for (QNetworkReply *order : orders)
            codes << Service::end(order).value("code");
        QVERIFY(codes.count("0") == 6 && codes.count("17") == 6 && service.money() == "0");

        QCOMPARE(service.get("/store/use?bid=1001&prop=11&use=1&extra=0").value("code"), "0");
        QCOMPARE(service.get("/store/use?bid=1001&prop=12&use=1&extra=0").value("code"), "0");
        QCOMPARE(service.get("/store/use?bid=1002&prop=12&use=1&extra=0").value("code"), "19");
        QCOMPARE(service.get("/store/mine?bid=1002").value("code"), "-1");
        QJsonArray mine = service.get("/store/mine?bid=1001").json()["data"].toArray();
        QJsonObject golden = mine[1].toObject();
        QVERIFY(golden.take("endTime").toString().toInt() > 1'500'000'000);
        mine[1] = golden;
        QCOMPARE(compact(mine),
                 R"([{"count":"72","endTime":null,"isExpire":"1","isUsing":"1","toolsId":"12"},)"
                 R"({"count":"1","isExpire":"1","isUsing":"2","toolsId":"11"}])");
        const QJsonObject props = service.get("/store/props?page=2&size=2").json();
        QCOMPARE(compact(QJsonArray{props["data"].toArray()[0]}),
                 R"([{"detail":"","id":"14","name":"VIP 2","normList":[{"describe":"",)"
                 R"("name":"one month","price":"100","type":"1"}],"picture":"","resUrl":"",)"
                 R"("soldOut":"0","toolType":"4","vipLevel":2}])");
        QCOMPARE(compact(service.get(Service::signedTarget("/vip/welfare?bid=0")).json()["data"]),
                 R"([{"discount":"1","price":"0","room":"5","vipLevel":"1","welfare":[]},)"
                 R"({"discount":"0.9","price":"100","room":"10","vipLevel":"2",)"
                 R"("welfare":[{"id":"12","numbers":"10"}]}])");
        service.get("/control/reset?state=1");
        QCOMPARE(service.money(), "500");
    }

    void tellsInstancesAndServers()
    {
        Service service;
        QCOMPARE(service.get("/servers/mine?bid=1001").body,
                 R"(({"code":0,"data":[{"id":"51","name":"Steve's world \u0028old\u0029",)"
                 R"("owner":1001,"ver":"1.8"},{"id":"52","name":"Everybody's world",)"
                 R"("ver":"1.7.2-1.8"}]}))");
        const QByteArray address = "127.0.0.1:" + QByteArray::number(service.gamePort);
        QCOMPARE(service.get("/servers/lan").body,
                 R"({"code":0,"server":[{"address":{"line1":")" + address +
                     R"("},"id":"7","mods":"mods;1201;saves;7-31;7-32",)"
                     R"("name":"The server of the sample","status":"0","ver":"1.8"}]})");
    }

    void servesPartsOfFiles()
    {
        Service service;
        service.write("files/ten", "0123456789");
        const Headers known = service.get("/files/ten").headers;
        const QByteArray etag = known["etag"], date = known["last-modified"];
        struct Row
        {
            Headers asked;
            int status;
            QByteArray body, range;
        };
        const Row rows[] = {
            {{{"Range", "bytes=2-4"}}, 206, "234", "bytes 2-4/10"},
            {{{"Range", "bytes=7-"}}, 206, "789", "bytes 7-9/10"},
            {{{"Range", "bytes=7-99"}}, 206, "789", "bytes 7-9/10"},
            {{{"Range", "bytes=-3"}}, 206, "789", "bytes 7-9/10"},
            {{{"Range", "bytes=0-0"}, {"If-Range", etag}}, 206, "0", "bytes 0-0/10"},
            {{{"Range", "bytes=0-0"}, {"If-Range", date}}, 206, "0", "bytes 0-0/10"},
            {{{"Range", "bytes=0-0"}, {"If-Range", "\"old\""}}, 200, "0123456789", ""},
            {{{"Range", "bytes=0-1,4-5"}}, 200, "0123456789", ""},
            {{{"Range", "bytes=10-"}}, 416, "", "bytes */10"},
            {{{"If-None-Match", "\"old\", " + etag}}, 304, "", ""},
            {{{"If-None-Match", "\"old\""}, {"If-Modified-Since", date}}, 200, "0123456789", ""},
            {{{"If-Modified-Since", date}}, 304, "", ""},
            {{{"If-Modified-Since", "Thu, 01 Jan 1970 00:00:00 GMT"}}, 200, "0123456789", ""},
        };
        for (const Row &row : rows) {
            const Reply reply = service.get("/files/ten", row.asked);
            QCOMPARE(reply.status, row.status);
            QCOMPARE(reply.body + '|' + reply.headers["content-range"], row.body + '|' + row.range);
        }
        service.write("files/ten", "9876543210");
        QVERIFY(service.get("/files/ten").headers["etag"] != etag);
        QCOMPARE(service.get("/files/..%2Faccounts.json").status, 404);
        QVERIFY(QFile::link(service.dir.filePath("data/game.json"),
                            service.dir.filePath("data/files/out")));
        QCOMPARE(service.get("/files/out").status, 404);
    }

    void failsOnCommand()
    {
        Service service;
        service.write("files/big", QByteArray(100'000, 'b'));
        struct Row
        {
            QByteArray command;
            int status, bodyBytes;
        };
        const Row rows[] = {
            {"path=/files/&drop=1", 0, 0},
            {"path=/files/&drop=0", 200, 100'000},
            {"path=/files/&cutAt=70001", 0, 70'001},
            {"path=/files/&cut=1&latency=20", 0, -1},
            {"path=/files/&error=503", 503, 0},
            {"path=/files/big&times=1&error=404", 404, 0},
            {"path=/files/big&rate=400000", 200, 100'000},
            {"path=/&drop=1", 200, 100'000}, // the longer path counts
        };
        for (const Row &row : rows) {
            QVERIFY2(service.get("/control?" + row.command).status == 200, row.command);
            const Reply reply = service.get("/files/big");
            QVERIFY2(reply.status == row.status, row.command);
            QVERIFY(row.bodyBytes < 0 ? reply.body.size() < 100'000
                                      : reply.body.size() == row.bodyBytes);
        }
        QCOMPARE(service.get("/resources/java").status, 0);
        for (const QByteArray command :
             {"drop=2", "drop=x", "latency=-1", "error=200", "times=0.5", "lag=1"})
            QCOMPARE(service.get("/control?path=/account/&" + command).value("code"), "11");
        service.get("/control/reset");
        QCOMPARE(service.get("/files/big", {{"Range", "bytes=0-9"}}).status, 206);
        QCOMPARE(service.get("/control/stats").body,
                 R"({"bytes":10,"prefixes":{"/files/":{"bytes":10,"requests":1}},"requests":1})");
        service.stop();
        service.start({"--fault", "path=/files/&error=503&retryAfter=9"});
        QCOMPARE(service.get("/files/big").headers["retry-after"], "9");
    }

    void namesBrokenFiles()
    {
        Service service;
        struct Row
        {
            QString file;
            QByteArray content, target, complaint;
        };
        const Row rows[] = {
            {"clients.json", "{", "/resources/clients", "clients.json"},
            {"clients.json", "[]", "/resources/clients", "clients.json"},
            {"clients.json", R"({"clients":[{"id":1,"name":"n","url":"u"}]})", "/resources/clients",
             R"(clients.json: clients[0]: "ver")"},
            {"java.json", R"({"java":{"id":1}})", "/resources/java", R"(java.json: "java")"},
            {"resources/9.json", R"({"id":8,"type":1,"name":"n","url":"u"})",
             "/resources/info?id=9", "resources/9.json"},
            {"resources/9.json", R"({"id":9,"type":9,"name":"n","url":"u"})",
             "/resources/info?id=9", "9 is no type"},
            {"servers.json", R"({"servers":[{"id":1,"name":"n","ver":"1","address":{"a":"h"}}]})",
             "/servers/lan", "servers.json"},
            {"store.json", R"({"props":[{"id":"x"}]})", "/store/props?page=1&size=9",
             R"(store.json: props[0]: "id")"},
            {"accounts.json", R"({"accounts":[{"bid":1.5}]})", "/store/mine?bid=1",
             R"(accounts.json: accounts[0]: "bid")"},
        };
        for (const Row &row : rows) {
            service.write(row.file, row.content);
            const Reply reply = service.get(row.target);
            QVERIFY2(reply.status == 500 && reply.value("code") == "21", reply.body);
            QByteArray told;
            QVERIFY(await(
                [&] { return (told += service.process.readAllStandardError()).endsWith('\n'); }));
            QVERIFY2(told.contains(row.complaint), told);
        }
        service.write("clients.json", R"({"clients":[]})");
        QCOMPARE(service.get("/resources/clients").body, R"({"code":0,"game":[]})");
        QVERIFY(QFile::remove(service.dir.filePath("data/store.json")));
        QCOMPARE(service.get("/store/props?page=1&size=9").body, R"({"code":0,"data":[]})");
    }

    void playsTheGameServer()
    {
        Service service;
        service.write("game.json", R"({"status":{"players":{"max":20,"online":3}}})");
        const QByteArray hello = "0F 00 00 09 31 32 37 2E 30 2E 30 2E 31 DD 63 01";
        const QByteArray ping = "09 01 01 02 03 04 05 06 07 08";
        const QByteArray status =
            QByteArray("\x23\0\x21", 3) + R"({"players":{"max":20,"online":3}})";
        const QByteArray longName = QByteArray(200, 'h').toHex();
        const QPair<QByteArray, QByteArray> rows[] = {
            {hello + "01 00" + ping, status + QByteArray::fromHex(ping)},
            {"CF 01 00 00 C8 01" + longName + "DD 63 01 01 00" + ping,
             status + QByteArray::fromHex(ping)},
            {hello + "01 01", ""},
            {hello + "02 00 00", ""},
            {hello + "01 00 01 00", status},
            {"0F 00 00 0A 31 32 37 2E 30 2E 30 2E 31 DD 63 01 01 00", ""},
            {"0F 00 00 09 31 32 37 2E 30 2E 30 2E 31 DD 63 02 01 00", ""},
            {"10 00 00 09 31 32 37 2E 30 2E 30 2E 31 DD 63 01 00 01 00", ""},
            {"0F 01 00 09 31 32 37 2E 30 2E 30 2E 31 DD 63 01 01 00", ""},
            {"FF FF FF FF FF 01", ""},
            {"00 01 00", ""},
        };
        for (const auto &[hex, told] : rows) {
            for (const int piece : {1, 1000}) {
                QTcpSocket socket;
                socket.connectToHost(QHostAddress::LocalHost, service.gamePort);
                QVERIFY(socket.waitForConnected());
                const QByteArray bytes = QByteArray::fromHex(hex);
                for (int at = 0; at < bytes.size(); at += piece) {
                    socket.write(bytes.mid(at, piece));
                    socket.flush();
                }
                QVERIFY(await([&] { return socket.state() == QTcpSocket::UnconnectedState; }));
                const QByteArray all = socket.readAll();
                QVERIFY2(all == told, hex + ": " + all.toHex());
            }
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Service)
#include "tst_Service.moc"
