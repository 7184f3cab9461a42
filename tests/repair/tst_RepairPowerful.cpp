#include "core/config/GameResConfig.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/repair/RepairPowerfulTask.h"
#include "tests/support/FakeMachine.h"
#include "tests/support/ServiceWorld.h"
#include "tests/support/TaskJournal.h"

namespace {

/// A world with downloads and records of the core in it.
struct UsedWorld : ServiceWorld
{
    explicit UsedWorld(const QString &dataPath, const QStringList &files = {})
    {
        home.home = dataPath == "home" ? path("home/bob") : "/nobody";
        const QString recordFile = "oriel/rivet/deploy.cache";
        const bool isOdd = !files.filter(recordFile).isEmpty();
        makeFiles(folder.path(), files + QStringList{"data/resources/.x", "data/resources/mods/5=p",
                                                     "oriel/rivet/users", "home/bob/a"});
        makeFiles(folder.path(), isOdd ? QStringList() : QStringList(recordFile));
        Environment::GetInstance()->settings()->setValue(
            "DataPath", QDir(folder.path()).absoluteFilePath(dataPath));
        GameResConfig::GetInstance()->setGameInstanceConfig(1, {5}, false);
        GameResConfig::GetInstance()->setIgnoredRemoteGameInstCfg(1, {5}, false);
        GameResConfig::GetInstance()->updateGameInstConfigFromRemote(1, {5}, false);
        for (DepHistoryFlatFile *history : histories())
            history->insertRecord("x", 1, {}, QDateTime::currentDateTime(), false);
    }
    static QList<DepHistoryFlatFile *> histories()
    {
        return {DeployResRecorder::GetInstance(), DeployGameResRecorder::GetInstance()};
    }
    FakeMachine home;
};

} // namespace

class tst_RepairPowerful : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void wipesAllButTheDownloads_data()
    {
        for (const char *name : {"dataPath", "files", "link", "left", "complaint"})
            QTest::addColumn<QString>(name);
        const QString downloads = "data data/resources data/resources/.x data/resources/mods "
                                  "data/resources/mods/5=p ";
        const QString deep = QString(QString(40, 'd') + '/').repeated(8);
        const QString held = "Remove res files Failed, check the game is running?";
        const QString records = "Remove deploy files Failed, check the related file is opening?";
        const bool isWindows = QSysInfo::productType() == "windows";
        const auto row = [](const char *name, const QString &dataPath, const QString &files,
                            const QString &link, const QString &left,
                            const QString &complaint = {}) {
            QTest::newRow(name) << dataPath << files << link << left << complaint;
        };
        row("all", "data", "data/list data/instances/A(1)/saves/a/b data/resource/x", "",
            downloads);
        row("nothing there", "none", "", "", downloads + "none");
        row("beyond 260 characters", "data", "data/game/" + deep + "f", "", downloads);
        row("not the records of the core", ".", "a b/c", "", "");
        row("held file", "data", "data/held data/z/a", "",
            downloads + (isWindows ? "data/held" : ""), isWindows ? held : "");
        row("the home", "home", "", "", downloads + "home home/bob home/bob/a", held);
        row("the program", QCoreApplication::applicationDirPath(), "", "", downloads, held);
        row("records that stay", "data", "oriel/rivet/deploy.cache/x data/a", "",
            downloads + "oriel/rivet/deploy.cache oriel/rivet/deploy.cache/x", records);
        if (isWine())
            return;
        row("link out", "data", "out/x", "out>data/game", downloads + "out out/x");
        row("link to the downloads", "data", "", "data/resources>data/alias", downloads);
        row("game data behind a link", "way", "data/a", "data>way", downloads + "way");
        row("downloads behind a link", "two", "two/store/mods/7 two/a", "two/store>two/resources",
            downloads + "two two/resources two/store two/store/mods two/store/mods/7");
        row("mods behind a link", "data", "data/big/7 data/a", "data/big>data/resources/skins",
            downloads + "data/big data/big/7 data/resources/skins");
        row("downloads that hold all", "two/in", "two/in/a", "two>two/in/resources",
            downloads + "two two/in two/in/a two/in/resources", held);
    }
    void wipesAllButTheDownloads()
    {
        QFETCH(QString, dataPath);
        QFETCH(QString, files);
        QFETCH(QString, link);
        QFETCH(QString, left);
        QFETCH(QString, complaint);
        const LogCapture log;
        UsedWorld world(dataPath, files.split(' ', Qt::SkipEmptyParts));
        if (!link.isEmpty())
            makeLink(world.path(link.section('>', 0, 0)), world.path(link.section('>', 1)));
        QFile held(world.path("data/held"));
        held.open(QIODevice::ReadOnly);

        RepairPowerfulTask task;
        TaskJournal journal(task);
        task.start();
        QVERIFY(await([&] { return task.isFinished(); }));
        const QString story = journal.story();
        const QString rest = complaint.isEmpty() ? "finished 1 " : "status " + complaint;
        QVERIFY2(
            story.startsWith("brief Start powerful repair, status powerful repair..., " + rest),
            qUtf8Printable(story));
        QCOMPARE(story.contains(", status It can not be removed: "), !complaint.isEmpty());
        QCOMPARE(story.endsWith(", finished 0 powerful repair failed"), !complaint.isEmpty());

        QStringList expected = left.split(' ', Qt::SkipEmptyParts);
        expected += {"oriel", "oriel/rivet", "oriel/rivet/users"};
        if (dataPath != "." && dataPath != "home")
            expected += {"home", "home/bob", "home/bob/a"};
        expected.sort();
        QCOMPARE(treeOf(world.folder.path()), expected.join(' '));
        QVERIFY(QFileInfo::exists(QCoreApplication::applicationFilePath()));

        const GameResConfig &config = *GameResConfig::GetInstance();
        QCOMPARE(config.getCustomGameInstCfgList(1).size(), 0);
        QCOMPARE(config.getIgnoredRemoteDefaultGameInstCfgList(1).size(), 0);
        QCOMPARE(config.getRemoteDefaultGameInstCfgList(1).size(), 1);
        for (DepHistoryFlatFile *history : UsedWorld::histories())
            QCOMPARE(history->getDeployResInDeployFolder("x").size(), 0);
    }

    void isDoneWithoutTheMainThreadAndTheTask()
    {
        const LogCapture log;
        for (const bool endsCore : {false, true}) {
            UsedWorld world("data", {"data/a"});
            QThreadPool *pool = QThreadPool::globalInstance();
            const int threads = pool->maxThreadCount();
            for (int i = 0; i < threads; ++i)
                pool->reserveThread();
            auto task = std::make_unique<RepairPowerfulTask>();
            task->start();
            QVERIFY(QFile::exists(world.path("data/a")));
            task.reset();
            if (endsCore)
                world.core.reset();
            QCOMPARE(QFile::exists(world.path("data/a")), !endsCore);
            for (int i = 0; i < threads; ++i)
                pool->releaseThread();
            QVERIFY(pool->waitForDone(20'000));
            QCOMPARE(treeOf(world.path("data")), "resources resources/.x resources/mods "
                                                 "resources/mods/5=p");
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RepairPowerful)
#include "tst_RepairPowerful.moc"
