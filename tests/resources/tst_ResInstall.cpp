#include "core/resources/LocalResLoadTask.h"
#include "core/resources/ResDownload.h"
#include "core/resources/ResDownloadMgr.h"
#include "core/resources/ResObj.h"
#include "core/resources/ResUpdateTask.h"
#include "tests/support/ServiceWorld.h"

namespace {

constexpr auto done = ResUpdateTask::ResInstallDone, failed = ResUpdateTask::ResInstallFailed;

/// A world with the mod 5, whose file is big enough to be stopped on its way.
struct ModWorld : ServiceWorld
{
    explicit ModWorld(const QByteArray &script = "")
    {
        server.play("/5", body, "ETag=\"1\" " + script);
        describe("/5");
    }
    void describe(const QString &target)
    {
        const QString record = R"({"code":0,"resource":{"id":"5","type":1,"name":"m","url":"%1"}})";
        server.play(info, record.arg(server.url(target).toString()).toUtf8(), "");
    }
    QString names() const { return QDir(path("resources/mods")).entryList(QDir::Files).join(' '); }

    QString file() const { return path("resources/mods/5"); }

    const char *info = "/resources/info?id=5";
    QByteArray body = QByteArray(3'000'000, 'm');
};

struct Mod : ResObj
{
    explicit Mod(uint id = 5, ResType type = ResTypeMods) : ResObj(id, type, nullptr)
    {
        connect(this, &ResObj::installStatusChanged, this,
                [this](uint from, uint to) { story += QString("%1%2 ").arg(from).arg(to); });
    }
    bool ends()
    {
        return await([this] { return installStatus() >= done || installStatus() == 0; });
    }

    QString story;
};

} // namespace

class tst_ResInstall : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void onlyOneTransferServesAll()
    {
        ModWorld world("trickle=300000 pause=10 then");
        Mod first, second;
        first.install();
        first.install();
        QVERIFY(
            await([&] { return first.installStatus() == ResUpdateTask::ResInstallDownloading; }));
        QVERIFY(second.loadFromCache());
        second.updateTask()->setUpdateStatus(ResUpdateTask::UpdatedFromRemote);
        second.install(); // joins on the next turn, however long a request would take
        QVERIFY(first.ends() && second.installStatus() == done);
        QCOMPARE(first.story, "01 12 23 ");
        QVERIFY(first.installProgress() == 100 && first.dlTotalSize() == 3'000'000);
        QCOMPARE(world.names(), "5 5.inf 5.state");
        QVERIFY(world.asked("/5").size() == 1 && world.asked(world.info).size() == 1);

        first.install(); // its record is fresh, its file is asked about
        QVERIFY(await([&] { return world.asked("/5").size() == 2; }));
        QVERIFY(await([&] { return first.story.endsWith("13 "); }));
        QCOMPARE(world.server.bodySentBytes(),
                 3'000'000 + world.server.requests()[0].bodySentBytes);

        auto *manager = ResDownloadMgr::GetInstance();
        QVERIFY(manager->deleteDownloadInstance(5, ResTypeSaves) && QFile::exists(world.file()));
        QVERIFY(manager->resDownloadInstance(5, ResTypeSaves, QUrl()) !=
                manager->resDownloadInstance(5, ResTypeMods, QUrl()));
    }

    void aNewUrlRedirectsTheNextTransfer()
    {
        ModWorld world;
        Mod mod;
        mod.install();
        QVERIFY(mod.ends());
        world.server.play("/new", "another", "");
        mod.setDownloadUrl(world.server.url("/new").toString());
        mod.install();
        QVERIFY(await([&] { return mod.story.startsWith("01 12 23 31 12 23"); }));
        QCOMPARE(FS::readFile(world.file()).value(), "another");
    }

    void deletionEndsATransfer()
    {
        ModWorld world("trickle=100000 pause=5");
        Mod mod;
        mod.install();
        mod.install(); // whose requester is not asked
        QVERIFY(await([&] { return mod.installProgress() > 5; }));
        mod.deleteRes();
        QVERIFY(mod.installStatus() == ResUpdateTask::ResInstallDeleted &&
                mod.installProgress() == 0);
        QCOMPARE(world.names(), "");
        Mod asked;
        asked.install();
        asked.install();
        asked.deleteRes(); // while the record is on its way
        QTest::qWait(50);
        QCOMPARE(asked.story, "01 15 ");
        QCOMPARE(world.names(), "");
        asked.install();
        QVERIFY(asked.ends() && asked.installStatus() == done);
        asked.deleteRes();
        makeFiles(world.path("resources/mods"), {"6", "6.inf"}); // of an earlier process
        Mod(6).deleteRes();
        QCOMPARE(world.names(), "");
    }

    void stopsWhenTheLastRequesterDoes()
    {
        ModWorld world("trickle=100000 pause=5");
        Mod mod;
        mod.install();
        mod.stop(); // while the record is on its way
        QCOMPARE(mod.story, "01 10 ");
        mod.install();
        mod.install();
        QVERIFY(await([&] { return mod.installProgress() > 5; }));
        mod.stop();
        QCOMPARE(mod.installStatus(), uint(ResUpdateTask::ResInstallDownloading));
        mod.stop();
        QCOMPARE(mod.story, "01 10 01 12 20 ");
        mod.install();
        mod.stop(); // before the transfer begins
        const int requests = world.server.requests().size();
        QTest::qWait(50);
        QCOMPARE(world.server.requests().size(), requests);
        mod.install();
        QVERIFY(await([&] { return mod.installStatus() == done; }));
        QVERIFY(world.server.requests().last().headers.contains("range"));
        Mod eager;
        QVERIFY(eager.loadFromCache());
        eager.install();
        QObject context; // wants it again while it stops
        connect(&eager, &ResObj::installStatusChanged, &context, [&] { eager.install(); });
        eager.stop();
        eager.disconnect(&context);
        QVERIFY(await([&] { return eager.installStatus() == done; }));
    }

    void aFailedRefreshIsNoFailedInstall()
    {
        struct Row
        {
            QByteArray answer, script;
            bool hasCache;
            uint status;
        };
        const Row rows[] = {
            {"", "status=500", true, done},
            {"", "status=500", false, failed},
            {"<html>", "", true, done},
            {"{}", "", false, failed},
            {R"({"resource":{}})", "", true, done},
            {R"({"resource":{"message":"none"}})", "", true, done},
            {R"({"resource":{"id":6,"type":1,"name":"another","url":"u"}})", "", true, done},
            {R"({"resource":{"id":5,"type":1,"name":""}})", "", false, failed},
        };
        for (const Row &row : rows) {
            ModWorld world;
            if (row.hasCache) {
                Mod mod;
                mod.install();
                QVERIFY(mod.ends());
            }
            world.server.play(world.info, row.answer, row.script);
            Mod mod;
            QCOMPARE(mod.loadFromCache(), row.hasCache);
            mod.install();
            QVERIFY2(mod.ends() && mod.installStatus() == row.status, row.answer);
            QVERIFY2(mod.resId() == 5, row.answer);
        }
    }

    void askersThatGoMakeRoomForOthers()
    {
        ModWorld world;
        world.server.play("/resources/info", "", "mute");
        {
            std::vector<std::unique_ptr<Mod>> askers; // more than are let through at a time
            for (uint id = 11; id <= 18; ++id) {
                askers.push_back(std::make_unique<Mod>(id));
                askers.back()->install();
            }
            QVERIFY(await([&] { return world.asked("/info").size() == 6; }));
        }
        Mod mod;
        mod.install();
        QVERIFY(mod.ends());
        QCOMPARE(world.asked("/info").size(), 7);
    }

    void gameClientsComeFromTheirList()
    {
        ModWorld world;
        world.server.play("/resources/clients",
                          R"({"code":0,"game":[{"id":5,"type":101,"ver":"1.8","name":"g","url":")" +
                              world.server.url("/5").toEncoded() + R"("}]})",
                          "status=500 then");
        Mod early(5, ResTypeGame);
        early.install();
        QVERIFY(early.ends() && early.installStatus() == failed);
        Mod late(5, ResTypeGame);
        late.install();
        QVERIFY(late.ends() && late.installStatus() == done);
        QVERIFY2(await([&] { return early.installStatus() == done; }),
                 "it hears the next list too");
        QCOMPARE(world.names(), "");
        QVERIFY(QFile::exists(world.path("resources/clients/5")));
    }

    void findsWhatLiesOnDisk()
    {
        const ServiceWorld world;
        makeFiles(world.path("resources"),
                  {"mods/12.inf", "mods/12", "mods/abc.inf", "mods/1.inf.inf", "clients/7.inf",
                   "java/9.inf", "skins/3.inf/x", "shaderpacks/4000000000.inf", "list.inf"});
        for (const QString &base : {world.path("resources"), world.path("none")}) {
            LocalResLoadTask task(base);
            QStringList found;
            bool hasEnded = false;
            connect(&task, &LocalResLoadTask::oneResLoaded, this,
                    [&](uint id, uint type) { found << QString("%1.%2").arg(type).arg(id); });
            connect(&task, &TaskAbstract::finished, this, [&] { hasEnded = true; });
            task.start();
            QVERIFY(await([&] { return hasEnded; }) && task.successful());
            found.sort();
            QCOMPARE(found.join(' '), base.endsWith("none") ? "" : "1.12 101.7 8.4000000000");
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_ResInstall)
#include "tst_ResInstall.moc"
