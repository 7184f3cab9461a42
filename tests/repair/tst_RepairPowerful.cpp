#include <QSemaphore>
#include <QtConcurrent>

#include "core/config/GameResConfig.h"
#include "core/deploy/DeployGameResRecorder.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/repair/RepairPowerfulTask.h"
#include "tests/support/FakeMachine.h"
#include "tests/support/ServiceWorld.h"
#include "tests/support/TaskJournal.h"

class tst_RepairPowerful : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void wipesAllButTheDownloads()
    {
        const QString deep = "d/game/" + QString(QString(40, 'd') + '/').repeated(8) + "f";
        const QString held = "Remove res files Failed, check the game is running?";
        const QString records = "Remove deploy files Failed, check the related file is opening?";
        const bool isWindows = QSysInfo::productType() == "windows";
        const struct
        {
            QString dataPath, files, link, left; // link: target>link
            QString complaint;
        } rows[] = {
            {"d", "d/list d/instances/A(1)/saves/a/b d/resource/x " + deep, "", "", ""},
            {"none", "", "", "none", ""},
            {".", "d2/a", "", "", ""}, // the records stay
            {"d", "d/held d/z/a", "", isWindows ? "d/held" : "", isWindows ? held : ""},
            {"home", "home/bob/a", "", "home home/bob home/bob/a", held},
            {QCoreApplication::applicationDirPath(), "", "", "", held},
            {isWindows ? "ORIEL/RIVET" : "oriel/rivet", "", "", "", held},
            {"d/x/none", "d/x", "", "d/x", held}, // there can be no such folder
            {"d", "oriel/rivet/deploy.cache/x d/a", "",
             "oriel/rivet/deploy.cache oriel/rivet/deploy.cache/x", records},
            {"d", "out/x", "out>d/game", "out out/x", ""},
            {"d", "", "d/resources>d/alias", "", ""},
            {"way", "d/a", "d>way", "way", ""},
            {"d", "d/big/7 d/a", "d/big>d/resources/skins", "d/big d/big/7 d/resources/skins", ""},
            {"two", "two/st/7 two/a", "two/st>two/resources", "two two/resources two/st two/st/7",
             ""},
            {"t/in/d", "t/in/d/a", "t>t/in/d/resources", "t t/in t/in/d t/in/d/a t/in/d/resources",
             held},
            {"d", "d/a", "d>d/resources/skins", "d/a d/resources/skins", held},
        };
        for (const auto &row : rows) {
            if (isWine() && !row.link.isEmpty())
                continue;
            const LogCapture log;
            ServiceWorld world;
            FakeMachine machine;
            machine.home = row.dataPath == "home" ? world.path("home/bob") : "/nobody";
            makeFiles(world.root, row.files.split(' ', Qt::SkipEmptyParts));
            makeFiles(world.root, {"d/resources/.x", "d/resources/5=p", "oriel/rivet/users"});
            if (row.complaint != records)
                makeFiles(world.root, {"oriel/rivet/deploy.cache"});
            const QStringList link = row.link.split('>');
            if (link.size() == 2)
                makeLink(world.path(link[0]), world.path(link[1]));
            QFile file(world.path("d/held"));
            file.open(QIODevice::ReadOnly);
            const QString path = QDir(world.root).absoluteFilePath(row.dataPath);
            Environment::GetInstance()->settings()->setValue("DataPath", path);
            auto &config = *GameResConfig::GetInstance();
            config.setGameInstanceConfig(1, {5}, false);
            config.setIgnoredRemoteGameInstCfg(1, {5}, false);
            const QList<DepHistoryFlatFile *> histories{DeployResRecorder::GetInstance(),
                                                        DeployGameResRecorder::GetInstance()};
            for (DepHistoryFlatFile *history : histories)
                history->insertRecord("x", 1, {}, {}, false);

            RepairPowerfulTask task;
            TaskJournal journal(task);
            task.start();
            QVERIFY(await([&] { return task.isFinished(); }));
            const QString story = journal.story().remove(QRegularExpression(" removed: [^,]*"));
            const QString why = "powerful repair failed";
            const QString what = row.dataPath == "d/x/none" ? "" : ", status It can not be";
            const QString end =
                row.complaint.isEmpty()
                    ? "finished 1 "
                    : "status " + row.complaint + what + ", failed " + why + ", finished 0 " + why;
            QCOMPARE(story, "brief Start powerful repair, status powerful repair..., " + end);
            QStringList expected = row.left.split(' ', Qt::SkipEmptyParts);
            expected += {"oriel", "oriel/rivet", "oriel/rivet/users"};
            if (row.dataPath != ".")
                expected += {"d", "d/resources", "d/resources/.x", "d/resources/5=p"};
            expected.sort();
            QCOMPARE(treeOf(world.root), expected.join(' '));
            QVERIFY(QFileInfo::exists(QCoreApplication::applicationFilePath()));
            QVERIFY(config.getCustomGameInstCfgList(1).isEmpty() &&
                    config.getIgnoredRemoteDefaultGameInstCfgList(1).isEmpty());
            for (DepHistoryFlatFile *history : histories)
                QCOMPARE(history->getDeployResInDeployFolder("x").size(), 0);
        }
    }

    void isDoneWithoutTheMainThreadAndTheTask()
    {
        const LogCapture log;
        for (const bool endsCore : {false, true}) {
            ServiceWorld world;
            makeFiles(world.root, {"a", "oriel/rivet/deploy.cache/which stays"});
            QThreadPool *pool = QThreadPool::globalInstance();
            const int threads = pool->maxThreadCount();
            pool->setMaxThreadCount(1);
            QSemaphore gate;
            QtConcurrent::run([&gate] { gate.acquire(); });
            auto task = std::make_unique<RepairPowerfulTask>();
            task->start();
            task.reset();
            QVERIFY(QFile::exists(world.path("a")));
            if (endsCore)
                world.core.reset();
            QCOMPARE(QFile::exists(world.path("a")), !endsCore);
            gate.release();
            QVERIFY(pool->waitForDone(20'000) && !QFile::exists(world.path("a")));
            pool->setMaxThreadCount(threads);
            QCoreApplication::processEvents(); // nobody is told of the failure
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_RepairPowerful)
#include "tst_RepairPowerful.moc"
