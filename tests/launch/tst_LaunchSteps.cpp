#include <QRandomGenerator>
#include <QThreadPool>

#include "core/config/GameResConfig.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/foundation/FSH.h"
#include "core/launch/OrAuthServerInstanceInfo.h"
#include "core/launch/ReadyForJava.h"
#include "core/launch/ReadyForMinecraftFiles.h"
#include "core/launch/ReadyForOtherRes.h"
#include "core/launch/ReadyForSelectLine.h"
#include "support/coresupport/CSystemInfo.h"
#include "support/coresupport/DirectoryNames.h"
#include "tests/support/Archives.h"
#include "tests/support/FakeMachine.h"
#include "tests/support/ResManager.h"
#include "tests/support/ServiceWorld.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestInstance.h"

namespace {

constexpr auto mods = ResTypeMods, packs = ResTypeResourcePacks, shaders = ResTypeShaders,
               others = ResTypeOther;

/// Hardly compressible, and without spaces.
const QByteArray content = [] {
    QByteArray bytes(150'000, '\0');
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(bytes.data()), bytes.size() / 4);
    return bytes.toBase64();
}();

/// A service with resources, an instance, and a step that asks for mods, packs and shaders.
struct World : ServiceWorld
{
    World()
    {
        DeployResRecorder::GetInstance()->init(path("deploy.cache"));
        GameResConfig::GetInstance()->initialize(path("game.config"));
        info->id = 9;
        info->resTypes = {{mods, {}}, {packs, {}}, {shaders, {}}, {others, {}}};
    }

    QByteArray record(uint id, uint type, const QByteArray &depends = "") const
    {
        const QString text = R"({"id":%1,"type":%2,"name":"n","url":"%3","ver":"1.8",
                                 "dependsOnList":"%4"})";
        return text.arg(id)
            .arg(type)
            .arg(server.url("/file").toString() + QString::number(id), QString(depends))
            .toUtf8();
    }
    /// A resource that unpacks to one file of its name.
    void offer(uint id, uint type, const QByteArray &depends = "", const QByteArray &script = "",
               int times = 1)
    {
        const QByteArray n = QByteArray::number(id);
        server.play("/resources/info?id=" + n,
                    R"({"code":0,"resource":)" + record(id, type, depends) + '}', "");
        server.play("/file" + n, archiveOf("zip", {{"f" + n, content.repeated(times)}}),
                    "ETag=\"" + n + "\" " + script);
    }
    void want(uint id, ResType type)
    {
        GameResConfig::GetInstance()->setGameInstanceConfig(9, {ResourceKey::pack(id, type)}, true);
    }
    QString instanceTree() const
    {
        return treeOf(instance->dir).remove(QRegularExpression("=[^ ]{99,}"));
    }

    std::shared_ptr<TestInstance> instance = std::make_shared<TestInstance>(path("inst"));
    std::shared_ptr<OrAuthServerInstanceInfo> info = std::make_shared<OrAuthServerInstanceInfo>();
    ResManager resources;
};

template <typename Step = ReadyForOtherRes>
struct Run
{
    template <typename... Arguments>
    explicit Run(Arguments... arguments) : step(arguments..., nullptr)
    {
        QObject::connect(&step, &GameLaunchBase::error, &journal,
                         [this](int number) { journal.lines << QString("error %1").arg(number); });
    }
    explicit Run(World &world) : Run(world.info, world.instance, &world.resources) {}

    /// How it ended, after looking at its progress.
    QString ends()
    {
        if (!await([this] { return !journal.lines.filter("finished").isEmpty(); }))
            return "does not end";
        int percent = 0;
        for (const QString &line : journal.lines.filter("/100")) {
            const int next = line.section('/', 0, 0).toInt();
            if (next < percent)
                return "falls to " + line;
            percent = next;
        }
        return journal.lines.last() + ' ' + journal.lines.filter(QRegExp("^error ")).join(' ');
    }
    QString play()
    {
        journal.lines.clear();
        step.start();
        return ends();
    }

    Step step;
    TaskJournal journal{step};
};

/// Holds each deployment shortly before its end, where it removes the folder it has unpacked into.
struct HeldDeployments : FakeMachine
{
    ~HeldDeployments() override
    {
        gate.release(100);
        QThreadPool::globalInstance()->waitForDone();
    }
    QString homePath() const override
    {
        if (QThread::currentThread() != qApp->thread())
            reached.release(), gate.acquire();
        return home;
    }

    mutable QSemaphore reached, gate;
};

const QString succeeded = "finished 1  ", cancelled = "finished 0 user cancel error 1";

} // namespace

class tst_LaunchSteps : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup()
    {
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(QThread::idealThreadCount());
    }

    void theWholeRoad()
    {
        World world;
        // Needs two more, one of which needs it: a circle. Its 2.9 MiB are unpacked first.
        world.offer(1, mods, "2;resource;3;", "", 20);
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        world.offer(2, mods, "1;");
        world.offer(3, packs, "mods;1;");
        world.offer(4, shaders, "", "trickle=30000 pause=400");
        world.offer(6, mods);
        world.offer(7, others);
        const auto key = &ResourceKey::pack;
        auto *config = GameResConfig::GetInstance();
        config->updateGameInstConfigFromRemote(9, {key(1, mods), key(6, mods)}, true);
        config->setIgnoredRemoteGameInstCfg(9, {key(6, mods)}, true);
        world.want(1, mods);
        world.want(4, shaders);
        world.want(7, others);
        makeFiles(world.instance->dir, {"mods/own", "own", "saves/own"});
        {
            Run run(world);
            QCOMPARE(run.play(), succeeded);
            const QStringList &lines = run.journal.lines;
            QCOMPARE(lines.mid(0, 3).join('|'),
                     "brief check other resource|"
                     "status checking the other resource, please wait for a moment...|5/100");
            QCOMPARE(lines[3], "brief updating the other resource");
            const int extracting = lines.indexOf("brief extracting file...");
            QVERIFY(lines[extracting - 1] == "85/100" && lines[extracting - 2] != "85/100");
            QCOMPARE(lines[extracting + 1], "status extracting files, please wait for a moment...");
            QVERIFY(lines.filter(QRegExp("(17|18|19)/100")).size() > 0);
            QStringList bar = lines.filter(QRegExp("8\\d/100"));
            bar.removeDuplicates();
            QCOMPARE(bar.join(' '), "85/100 87/100");
            QVERIFY(
                lines
                    .filter(QRegExp("status download speed:\\d+Kb/s<br/>download size:[23]M<br/>"
                                    "file total size:3M<br/><extern>please be patient, you "
                                    "can play all server once updated</extern>"))
                    .size() > 0);
            QVERIFY(lines.contains("status left file number: 5<br/>extracting files: 100%..."));
            QCOMPARE(lines[lines.size() - 2], "100/100");
        }
        const QString tree = "f7 mods mods/f1 mods/f2 own resourcepacks resourcepacks/f3 saves "
                             "saves/own shaderpacks shaderpacks/f4";
        QCOMPARE(world.instanceTree(), tree);
        QVERIFY(world.asked("/file1").size() >= 1 && world.asked("/file6").size() == 0);

        const qint64 bytes = world.server.bodySentBytes("/file");
        QCOMPARE(Run(world).play(), succeeded);
        QCOMPARE(world.server.bodySentBytes("/file"), bytes);
        QCOMPARE(world.instanceTree(), tree);

        config->unSetGameInstanceConfig(9, {key(4, shaders), key(7, others)}, true);
        world.server.play("/file1", "", "gone");
        QCOMPARE(Run(world).play(), succeeded); // from what is there
        QCOMPARE(world.instanceTree(), QString(tree).remove("f7 ").remove(" shaderpacks/f4"));
    }

    void faultsEndTheStep()
    {
        struct Row
        {
            const char *name;
            QString end;
            int stage; // the last percent; -1 none
            std::function<void(World &)> arrange;
            QString tree = "";
            QString abortAt = "never"; // by a listener
        };
        const QString noDownload = "finished 0 download failed error 3";
        const QString noDeploy = "finished 0 deploy failed error 5";
        const Row rows[] = {
            {"nothing wanted", succeeded, 100, [](World &w) { w.info->resTypes.clear(); }},
            {"record service down", noDownload, 5,
             [](World &w) { w.server.play("/resources/info?id=1", "", "status=500"); }},
            {"empty answer", noDownload, 5,
             [](World &w) { w.server.play("/resources/info?id=1", "", ""); }},
            {"no payload", noDownload, 5,
             [](World &w) { w.server.play("/file1", "", "status=404"); }},
            {"deleted meanwhile", "finished 0 download stop error 4", 5,
             [](World &w) {
                 QTimer::singleShot(0, w.instance.get(),
                                    [&w] { w.resources.knownRes(1, mods)->deleteRes(); });
             }},
            {"no archive", noDeploy, 85, [](World &w) { w.server.play("/file1", "?", ""); },
             "mods"},
            {"blocked folder", noDeploy, 85, [](World &w) { makeFiles(w.path("inst"), {"mods"}); },
             "mods"},
            {"a record that leads out", "finished 0 repair deploy folder failed error 5", 100,
             [](World &w) {
                 w.info->resTypes = {{others, {}}};
                 makeFiles(w.path(""), {"inst/own", "up"});
                 DeployResRecorder::GetInstance()->insertRecord(w.path("inst"), 8, {"../up"}, {},
                                                                false);
             },
             "own"},
            {"no instance", noDeploy, 85, [](World &w) { w.instance.reset(); }},
            {"no folder for it", noDeploy, 85, [](World &w) { w.instance->dir.clear(); }},
            {"no dependency", noDownload, 5, [](World &w) { w.offer(1, mods, "2;"); }},
            {"aborted", cancelled, -1, [](World &) {}, "", "checking"},
            {"aborted late", cancelled, 85, [](World &) {}, "", "extracti"},
        };
        for (const Row &row : rows) {
            World world;
            const QString dir = world.instance->dir;
            world.offer(1, mods);
            world.want(1, mods);
            row.arrange(world);
            Run run(world);
            connect(&run.step, &TaskAbstract::status, this, [&](const QString &status) {
                if (status.startsWith(row.abortAt))
                    run.step.abort();
            });
            const LogCapture log;
            const QString end = run.play();
            QThreadPool::globalInstance()->waitForDone();
            const QString last = run.journal.lines.filter("/100").value(0).isEmpty()
                                     ? "-1/100"
                                     : run.journal.lines.filter("/100").last();
            QVERIFY2(end == row.end, qPrintable(QString("%1: %2").arg(row.name, end)));
            QVERIFY2(last == QString("%1/100").arg(row.stage), row.name);
            QVERIFY2(treeOf(dir) == row.tree, qPrintable(row.name + treeOf(dir)));
        }
        World world;
        world.want(1, mods);
        Run none(world.info, world.instance, static_cast<IResManager *>(nullptr));
        QCOMPARE(none.play(), "finished 0 unknown error error 0");
        none.step.abort();
        QCOMPARE(none.journal.lines.last(), "failed user cancel");
        QCOMPARE(Run(std::shared_ptr<OrAuthServerInstanceInfo>(), world.instance, &world.resources)
                     .play(),
                 succeeded);
    }

    void aStoppedStepLeavesNothingRunning()
    {
        World world;
        for (uint id = 1; id <= 12; ++id) {
            world.offer(id, mods, "", "trickle=2500 pause=4");
            world.want(id, mods);
        }
        for (int delay : {0, 5, 20, 60, 120, 250}) {
            Run run(world);
            run.step.start();
            QTest::qWait(delay);
            if (run.step.isRunning())
                run.step.abort();
            QCOMPARE(run.ends(), cancelled);
            QCOMPARE(run.journal.lines.filter("user cancel").size(), 2);
            QTest::qWait(20);
            for (const auto &object : qAsConst(world.resources.table))
                QVERIFY(object->installStatus() != 1 && object->installStatus() != 2);
        }
        // Two steps share the resources, and one of them is stopped. One record is new to both.
        world.offer(13, mods);
        world.want(13, mods);
        Run first(world), second(world);
        first.step.start();
        second.step.start();
        second.step.abort();
        second.step.abort();
        QCOMPARE(first.ends(), succeeded);
        QCOMPARE(world.instanceTree().count("mods/f"), 13);
        const qint64 all = 13 * world.resources.table.begin().value()->dlTotalSize();
        QVERIFY2(world.server.bodySentBytes("/file") < 2 * all,
                 "what had arrived is not fetched again");
    }

    void aRestartMeetsTheDeploymentsOfTheRunBefore()
    {
        auto *pool = QThreadPool::globalInstance();
        pool->setMaxThreadCount(1); // so that one deployment runs and the other waits
        for (const bool isOverEarly : {true, false}) {
            World world;
            for (const uint id : {1, 2})
                world.offer(id, mods), world.want(id, mods);
            Run run(world);
            HeldDeployments held;
            run.step.start();
            QVERIFY(await([&] { return held.reached.available() > 0; }));
            run.step.abort();
            QCOMPARE(run.ends(), cancelled);
            run.journal.lines.clear();
            run.step.start();
            if (isOverEarly) {
                held.gate.release(100);
                pool->waitForDone();
                QCOMPARE(world.instanceTree(), "mods mods/f1");
            } else {
                connect(&run.step, &TaskAbstract::taskBrief, &run.journal, [&](const QString &s) {
                    if (s.startsWith("extract"))
                        QTimer::singleShot(0, &run.journal, [&] { held.gate.release(100); });
                });
            }
            QCOMPARE(run.ends(), succeeded);
            QCOMPARE(world.instanceTree(), "mods mods/f1 mods/f2");
        }
    }

    void resourcesThatAListNames()
    {
        const bool is64Bit = CSystemInfo(nullptr).IsOs64();
        const QByteArray java = is64Bit ? R"("name":"jre x64")" : R"("name":"jre x86")";
        const auto answer = [](const QByteArray &record) {
            return R"({"code":0,"game":[)" + record + R"(],"resource":{"java":[)" + record + "]}}";
        };
        const QByteArray good = R"({"id":5,"type":"%1",)" + java + R"(,"ver":"1.8","url":"%2"})";
        const QPair<QByteArray, QStringList> rows[] = {
            {"", {"can not get resource list.", "game client list have not be updated."}},
            {R"({"id":5,"type":7,"name":"jre x64 x86","ver":"1.8"})",
             {"can not get resource list.", "type not \"Game\", not expected error."}},
            {R"({"id":"0","type":4,"name":"jre x64 x86","ver":"1.8"})",
             {"can not get resource list.", "server instance id is zero, not expected error."}},
            {R"({"id":5,"type":4,"name":"other","ver":"1.9"})",
             {"can not get resource list.",
              "game client JSON object is empty, not expected error."}},
        };
        for (const auto &[record, reasons] : rows) {
            World world;
            world.server.play("/resources/java", answer(record), "");
            world.server.play("/resources/clients", answer(record), "");
            const std::weak_ptr<MCInstanceObj> instance = world.instance;
            IResManager *manager = &world.resources;
            Run<ReadyForJava> javaRun(instance, manager);
            Run<ReadyForMinecraftFiles> gameRun(instance, manager);
            QCOMPARE(javaRun.play(), "finished 0 " + reasons[0] + " error 2");
            QCOMPARE(gameRun.play(), "finished 0 " + reasons[1] + " error 2");
        }
        World world;
        world.offer(5, ResTypeGame);
        const QByteArray client = QByteArray(good)
                                      .replace("%1", "101")
                                      .replace("%2", world.server.url("/file5").toEncoded());
        world.server.play("/resources/clients", answer(client), "");
        Run<ReadyForMinecraftFiles> run(world.instance, &world.resources);
        QCOMPARE(run.play(), succeeded);
        QVERIFY(run.journal.lines.contains("brief updating the game client"));
        QVERIFY(QFile::exists(FSH::gameDataAbsolutePath() + '/' + g_deploypath_game_name + "/f5"));
        QVERIFY2(world.asked("/resources/info?id=5").size() == 0, "the list has told all");
    }

    void aLineIsSelected()
    {
        World world;
        const QPair<QStringList, QStringList> rows[] = {
            {{"10.0.0.1:25566"}, {"10.0.0.1:25566"}},
            {{"a", "", "b:abc", "c:0", ":7", "d:65537:8"},
             {"a:25565", "b:25565", "c:25565", ":7:25565", "d:1"}},
            {{""}, {":0"}},
        };
        for (const auto &[addresses, expected] : rows) {
            QSet<QString> seen;
            for (int i = 0; i < 200; ++i) {
                Run<ReadyForSelectLine> run(world.info, world.instance, &world.resources);
                run.step.setServerAddressList({"replaced"});
                run.step.setServerAddressList(addresses);
                *world.info = {};
                const LogCapture log;
                QCOMPARE(run.play(), succeeded);
                seen << QString("%1:%2").arg(world.info->host).arg(world.info->port);
            }
            QCOMPARE(seen, QSet<QString>(expected.begin(), expected.end()));
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_LaunchSteps)
#include "tst_LaunchSteps.moc"
