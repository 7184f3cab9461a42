#include "support/coresupport/CSystemInfo.h"
#include "tests/support/Archives.h"
#include "tests/support/Await.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"
#include "tests/support/TestServer.h"

namespace {

/// How one run of the command ended, and what it said.
struct Outcome
{
    int exitCode = -1;
    QString output;
};

} // namespace

/// The real command in processes of its own, against a service of the test.
class tst_Host : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        const bool isWindows = QSysInfo::productType() == "windows";
        if (isWindows && !isWine())
            QSKIP("would write into the user's own folders");
        const QByteArray java =
            FS::readFile(QStandardPaths::findExecutable("scripted-game")).value_or("");
        offer("/files/java", {{"jre/bin/javaw.exe", java, 0100755}});
        offer("/files/client", {{".minecraft/versions/oriel1.8/1.8.bat", "-x\n%UserName%\n"}});
        offer("/files/5", {{"a.jar", "mod"}});
        say("/account/login", R"({"code":"1","ortoken":"t","oruser_profile":{"login":"Bob",
                                  "user":{"bid":"7"}}})");
        say("/game/auth", R"({"code":1,"token":"t","pname":"Bob","uuid":"u"})");
        say("/servers/mine", R"(({"code":0,"data":[{"id":"9","name":"Mine","ver":"1.8",
            "lines":["127.0.0.1:1"],"resources":[{"id":5,"type":1}]}]}))");
        const QByteArray name = CSystemInfo(nullptr).IsOs64() ? "x64" : "x86";
        say("/resources/java", R"({"code":0,"resource":{"java":[{"id":3,"type":4,"name":")" + name +
                                   R"(","url":"BASE/files/java"}]}})");
        say("/resources/clients", R"({"code":0,"game":[{"id":4,"type":101,"ver":"1.8","name":"c",
                                      "url":"BASE/files/client"}]})");
        say("/resources/info?id=5", R"({"code":0,"resource":{"id":5,"type":1,"name":"m",
                                        "url":"BASE/files/5"}})");
        // Both for the check of the Java and for the game.
        qputenv("GAME_STEPS", "print os.arch|print java.version|args");
        qputenv("DISPLAY", "");
    }

    void theStore()
    {
        say("/account/info", R"({"code":0,"bid":"7","money":"9","VIPlevel":"0",
            "deadLine":"0","endTime":"0"})");
        say("/store/props", R"({"code":0,"data":[{"id":"12","name":"Cake","toolType":"2",
            "picture":"","resUrl":"","soldOut":"1","normList":[{"type":"1","price":"7","name":"one",
            "describe":""}]}]})");
        say("/store/mine", R"({"code":-1})");
        say("/store/buy", R"({"code":0,"propId":"12","count":"1","expiryData":"0"})");
        say("/store/use", R"({"code":0})");
        QCOMPARE(run("store mine").exitCode, 1); // nobody is logged in
        QCOMPARE(run("login bob --password-stdin", "secret\n").exitCode, 0);
        QVERIFY(run("store mine").output.contains("money 9, no VIP"));
        const Outcome bought = run("store buy 12");
        QVERIFY2(bought.output.contains("money 2") && bought.exitCode == 0, bought.output.toUtf8());
        QCOMPARE(run("store use 12").exitCode, 0);
        for (const char *line : {"store buy 12 2", "store buy 13"})
            QCOMPARE(run(line).exitCode, 1);
        for (const char *path : {"/store/buy", "/store/use"})
            say(path, R"({"code":17,"msg":"no","errMsg":"no"})");
        for (const char *line : {"store buy 12", "store use 12 off"})
            QCOMPARE(run(line).exitCode, 1);
        QCOMPARE(run("store use 12 maybe").exitCode, 2);
        QCOMPARE(run("logout").exitCode, 0);
    }

    void aWholeLaunch()
    {
        QCOMPARE(run("launch 9").exitCode, 24); // nobody is logged in
        QCOMPARE(run("settings ChangedDataDir " + m_dir.filePath("data")).exitCode, 0);
        const Outcome login = run("login bob --password-stdin", "secret\n");
        QVERIFY2(login.exitCode == 0 && login.output.contains("account 7"), login.output.toUtf8());
        QVERIFY(run("--json instances").output.contains(R"("name":"Mine")"));

        Outcome first = run("--json launch Mine");
        QVERIFY2(first.exitCode == 0, first.output.toUtf8());
        for (const QString &line : first.output.trimmed().split('\n'))
            QVERIFY2(QJsonDocument::fromJson(line.toUtf8()).isObject(), line.toUtf8());
        QVERIFY(first.output.contains(R"("event":"done")"));
        const QString instance = m_dir.filePath("data/instances/Mine(9)/");
        QVERIFY(FS::readFile(instance + "mods/a.jar") == QByteArray("mod"));
        QVERIFY(FS::readFile(instance + "game-output.log").value_or("").contains("[Bob]"));

        const qint64 bytes = m_server.bodySentBytes("/files/");
        QCOMPARE(run("launch 9").exitCode, 0);
        QCOMPARE(m_server.bodySentBytes("/files/"), bytes);

        QCOMPARE(run("resources 9 ignore 1 5").exitCode, 0);
        QCOMPARE(run("launch 9").exitCode, 0);
        QVERIFY(!QFile::exists(instance + "mods/a.jar"));
        QCOMPARE(run("resources 9 unignore 1 5").exitCode, 0);

        const bool hasSignals = QSysInfo::productType() != "windows";
        for (const char *path : {"/game/auth", "/servers/mine", "/account/login"}) {
            m_server.play(path, "", "mute");
            m_interruptAt = path;
            const Outcome cancelled = hasSignals ? run("launch 9") : Outcome{130, "cancelled"};
            QVERIFY2(cancelled.exitCode == 130 && cancelled.output.contains("cancelled"), path);
        }

        m_server.play("/", "", "gone");
        const Outcome offline = run("launch 9");
        QVERIFY2(offline.exitCode == 0 && offline.output.contains("the last session"),
                 offline.output.toUtf8());
        QVERIFY(QFile::exists(instance + "mods/a.jar"));
        QCOMPARE(run("login bob --password-stdin", "guessed\n").exitCode, 1);
        QCOMPARE(run("logout").exitCode, 0);
        QCOMPARE(run("launch 9").exitCode, 24);
    }

    void wrongUsage()
    {
        for (const char *line : {"", "--json", "dance", "launch", "launch 1 2", "register bob",
                                 "ping a:99999", "--service ftp://x version"})
            QCOMPARE(run(line).exitCode, 2);
        QCOMPARE(run("settings ChangedDataDir " + QStandardPaths::findExecutable("rivet")).exitCode,
                 1); // no folder
        QVERIFY(run("version").output.startsWith("rivet 0."));
    }

    void languages()
    {
        const QString refusal = run("--language zh_CN dance").output;
        QVERIFY2(refusal.contains(u8"请参阅 rivet --help"), refusal.toUtf8());
        QVERIFY(run("--language xx dance").output.contains("see rivet --help"));
        // Programs read the same in each language.
        QVERIFY(run("--json --language zh_CN settings").output.contains(R"("key":"DataPath")"));
        // Each character takes two columns.
        QVERIFY(run("--language zh_CN --help").output.contains(u8"\n      所有数据"));
        QVERIFY(run("--language zh_CN settings").output.startsWith(u8"键                  值"));
    }

private:
    void offer(const QString &path, const Items &items)
    {
        m_server.play(path, archiveOf("zip", items), "ETag=\"1\"");
    }
    void say(const QString &path, QByteArray answer)
    {
        m_server.play(path, answer.replace("BASE", m_server.url("").toEncoded()), "");
    }
    Outcome run(const QString &line, const QByteArray &input = {})
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("RIVET_SERVICE_URL", m_server.url("").toString());
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStandardPaths::findExecutable("rivet"), line.split(' ', Qt::SkipEmptyParts));
        process.write(input);
        process.closeWriteChannel();
        await([&] {
            if (!m_interruptAt.isEmpty() &&
                m_server.requests().last().path.startsWith(m_interruptAt))
                m_interruptAt.clear(), process.terminate();
            return process.state() == QProcess::NotRunning;
        });
        return {process.exitCode(), QString::fromUtf8(process.readAll()).remove('\r')};
    }

    QTemporaryDir m_dir;
    QString m_interruptAt; ///< the request that the next run waits for in vain
    TestServer m_server;
};

RIVET_SANDBOXED_TEST_MAIN(tst_Host)
#include "tst_Host.moc"
