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
    template <typename Object, typename Good, typename Bad>
    QString outcomeOf(Object *object, Good good, Bad bad, const std::function<void()> &act)
    {
        QString outcome;
        const QObject context;
        QObject::connect(object, good, &context, [&] { outcome = "ok"; });
        QObject::connect(object, bad, &context,
                         [&](const QString &, const QString &why) { outcome = why; });
        act();
        await([&] { return !outcome.isEmpty(); });
        return outcome;
    }
    QString logIn(const QString &user, const QString &password)
    {
        auto *host = RivetLoginHost::GetInstance();
        host->LogOut();
        return outcomeOf(host, &RivetLoginHost::loginSuccess, &RivetLoginHost::loginFailed,
                         [&] { host->LogIn(user, false, false, password); });
    }
    QString enrol(const QString &user, const QString &code)
    {
        auto *host = RivetUserRegister::GetInstance();
        return outcomeOf(host, &RivetUserRegister::registerSuccess,
                         &RivetUserRegister::registerFailed,
                         [&] { host->registerAccount(user, "pw", code); });
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
        };
        for (const auto &[query, status] : rows)
            QVERIFY2(world.enterGame(query) == status, qPrintable(query));

        QCOMPARE(world.enrol("alex+1@x@y", "1111"), "wrong verification code");
        QCOMPARE(
            world.service.get("/account/register?user=a&password=b&name=c&type=1").value("code"),
            "15");
        QCOMPARE(world.enrol("alex+1@x@y", "2580"), "ok");
        QCOMPARE(world.enrol("alex+1@x@y", "2580"), "the user name is taken");
        QCOMPARE(world.enrol("steve@rivet.example", "2580"), "the user name is taken");
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
            for (const QByteArray &bad :
                 {good + "0", good.left(good.size() - 1), Service::signedTarget(target, 0, 8),
                  Service::signedTarget(target, 700), Service::signedTarget(target, -700),
                  QByteArray(good).replace("1001", "1002")})
                QCOMPARE(service.get(bad).value("code"), "14");
            QCOMPARE(service.get(target).value("code") + service.get(good).value("code"), "110");
        }
        QCOMPARE(service.money(), "495");
    }

    void sellsProps()
    {
        Service service;
        struct Row
        {
            QByteArray target;
            QString code, count, money;
            int days = 0; // until the end
        };
        const Row rows[] = {
            {"buy?prop=12&norm=2", "0", "13", "460"},
            {"buy?prop=12&norm=3", "18", "", "460"},
            {"buy?prop=11&norm=1", "0", "1", "400", 30},
            {"buy?prop=11&norm=1", "0", "1", "340", 60},
            {"buy?prop=14&norm=1", "0", "1", "240", 30},
            {"buy?prop=15&norm=1", "18", "", "240"},
            {"buy?prop=99&norm=1", "18", "", "240"},
            {"buy?prop=x&norm=1", "11", "", "240"},
            {"use?prop=11&use=1", "0", "", "240"},
            {"use?prop=12&use=1", "0", "", "240"},
            {"use?prop=14&use=1", "19", "", "240"},
            {"use?prop=15&use=1", "19", "", "240"},
        };
        for (const Row &row : rows) {
            const QByteArray target = "/store/" + row.target + "&bid=1001";
            const Reply reply = service.get(Service::signedTarget(target));
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

        const QByteArray mine = service.get("/store/mine?bid=1001").body;
        QCOMPARE(QString(mine).replace(QRegularExpression("\\d{10}"), "T").replace('"', '\''),
                 "{'code':0,'data':[{'count':'72','endTime':null,'isExpire':'1','isUsing':'1',"
                 "'toolsId':'12'},{'count':'1','endTime':'T','isExpire':'1','isUsing':'2',"
                 "'toolsId':'11'}]}");
        service.get("/control/reset?state=1");
        QCOMPARE(service.money(), "500");
    }

    void answersInTheFormThatReadersWant()
    {
        Service service;
        const QByteArray game = "127.0.0.1:" + QByteArray::number(service.gamePort);
        const QPair<QByteArray, QByteArray> rows[] = {
            {"/store/mine?bid=1002", "{'code':-1,'msg':'nothing'}"},
            {"/store/props?page=2&size=3",
             "{'code':0,'data':[{'detail':'','id':'15','name':'Fireworks','normList':[{'describe':"
             "'','name':'one','price':'1','type':'1'}],'picture':'','resUrl':'','soldOut':'1',"
             "'toolType':'3'}]}"},
            {"/vip/welfare?bid=0",
             "{'code':0,'data':[{'discount':'1','price':'0','room':'5','vipLevel':'1','welfare':[]}"
             ",{'discount':'0.9','price':'100','room':'10','vipLevel':'2','welfare':[{'id':'12',"
             "'numbers':'10'}]}]}"},
            {"/servers/mine?bid=1001",
             "({'code':0,'data':[{'id':'51','name':'A world of Steve \\u0028old\\u0029','owner':"
             "1001,'ver':'1.8'},{'id':'52','name':'A world for everybody','ver':'1.7.2-1.8'}]})"},
            {"/servers/lan?", "{'code':0,'server':[{'address':{'line1':'" + game +
                                  "'},'id':'7','mods':'mods;1201;saves;7-31;7-32','name':"
                                  "'The server of the sample','status':'0','ver':'1.8'}]}"},
        };
        for (const auto &[target, body] : rows)
            QCOMPARE(service.get(Service::signedTarget(target)).body.replace('"', '\''), body);
    }

    void servesPartsOfFiles()
    {
        Service service;
        service.write("files/ten", "0123456789");
        const Headers known = service.get("/files/ten").headers;
        const QByteArray etag = known["etag"], date = known["last-modified"];
        const std::tuple<Headers, int, QByteArray, QByteArray> rows[] = {
            {{{"Range", "bytes=2-4"}}, 206, "234", "bytes 2-4/10"},
            {{{"Range", "bytes=7-"}}, 206, "789", "bytes 7-9/10"},
            {{{"Range", "bytes=-3"}}, 206, "789", "bytes 7-9/10"},
            {{{"Range", "bytes=0-0"}, {"If-Range", etag}}, 206, "0", "bytes 0-0/10"},
            {{{"Range", "bytes=0-0"}, {"If-Range", date}}, 206, "0", "bytes 0-0/10"},
            {{{"Range", "bytes=0-0"}, {"If-Range", "\"old\""}}, 200, "0123456789", ""},
            {{{"Range", "bytes=0-1,4-5"}}, 200, "0123456789", ""},
            {{{"Range", "bytes=10-"}}, 416, "", "bytes */10"},
            {{{"If-None-Match", "\"old\", " + etag}}, 304, "", ""},
            {{{"If-None-Match", "\"old\""}, {"If-Modified-Since", date}}, 200, "0123456789", ""},
            {{{"If-Modified-Since", date}}, 304, "", ""},
        };
        for (const auto &[asked, status, body, range] : rows) {
            const Reply reply = service.get("/files/ten", asked);
            QCOMPARE(reply.status, status);
            QVERIFY(reply.body == body && reply.headers["content-range"] == range);
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
        const std::tuple<QByteArray, int, int> rows[] = {
            {"path=/files/&drop=1", 0, 0},
            {"path=/files/&cutAt=70001", 0, 70'001},
            {"path=/files/&error=503", 503, 0},
            {"path=/files/big&times=1&error=404", 404, 0},
            {"path=/files/big&rate=400000", 200, 100'000},
            {"path=/&drop=1", 200, 100'000}, // the longer path counts
        };
        for (const auto &[command, status, bodyBytes] : rows) {
            QVERIFY2(service.get("/control?" + command).status == 200, command);
            const Reply reply = service.get("/files/big");
            QVERIFY2(reply.status == status && reply.body.size() == bodyBytes, command);
        }
        service.get("/control?path=/files/big&cut=1");
        QVERIFY(service.get("/files/big").body.size() < 100'000);
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
        const std::tuple<QString, QByteArray, QByteArray, QByteArray> rows[] = {
            {"clients.json", "{", "/resources/clients", "clients.json"},
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
        for (const auto &[file, content, target, complaint] : rows) {
            service.write(file, content);
            const Reply reply = service.get(target);
            QVERIFY2(reply.status == 500 && reply.value("code") == "21", reply.body);
            QByteArray told;
            QVERIFY(await(
                [&] { return (told += service.process.readAllStandardError()).endsWith('\n'); }));
            QVERIFY2(told.contains(complaint), told);
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
