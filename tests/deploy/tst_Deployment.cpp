#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/deploy/DepHistoryFlatFile.h"
#include "core/deploy/DeployCleanTr.h"
#include "core/deploy/DeployCleanTrFacotry.h"
#include "core/deploy/DeployJavaResTask.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/deploy/DeployTaskWithCopyFile.h"
#include "core/deploy/DeployTaskWithUnzipMd5.h"
#include "core/foundation/MCSettings.h"
#include "platform/FileLock.h"
#include "support/coresupport/GlobalDebugOptions.h"
#include "tests/support/Archives.h"
#include "tests/support/FakeMachine.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

class tst_Deployment : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QThreadPool::globalInstance()->setMaxThreadCount(16); }
    void init()
    {
        m_history.reset(); // before its folder
        m_dir = std::make_unique<QTemporaryDir>();
        m_game = m_dir->filePath("game");
        m_source = m_dir->filePath("7");
        m_history = std::make_unique<DepHistoryFlatFile>();
        m_history->init(m_dir->filePath("deploy.cache"));
        MCSettings().remove("JavaPath");
    }

    void failuresTellTheirReason()
    {
        makeFiles(m_dir->path(), {"plain", "game/pic.png/x", "game/kept"});
        const QString source = m_dir->filePath("plain"), blocked = source + "/dir";
        const QPair<QString, QString> rows[] = {
            {"copy|" + source + "|", "failed, skin deploy dir is empty. "},
            {"copy|" + m_source + "|" + m_game, "src file is not exists. "},
            {"copy|" + source + "|" + blocked, "can not create dir " + blocked + "."},
            {"copy|" + source + "|" + m_game,
             "copy " + source + " to " + m_game + "/pic.png failed."},
            {"unzip|" + source + "|", "unknown error"},
            {"md5|" + m_game + "|" + m_game, "unknown error"},
            {"unzip|" + source + "|" + blocked, "can not create dir  " + blocked + "."},
            {"unzip|" + source + "|" + m_game, "unzip failed."},
        };
        for (const auto &[what, reason] : rows) {
            const LogCapture log;
            const QStringList words = what.split('|');
            QCOMPARE(deploy(words[0], 7, words[1], words[2]), reason);
            QVERIFY(log.has(QtCriticalMsg, reason));
            QCOMPARE(treeOf(m_game), "kept pic.png pic.png/x");
            QVERIFY(m_history->getDeployResInDeployFolder(m_game).isEmpty());
        }
        // The player has put a folder into the place of a recorded file.
        makeFiles(m_game, {"a"});
        m_history->insertRecord(m_game, 7, {"a"}, QDateTime::currentDateTime(), false);
        QVERIFY(QFile::remove(m_game + "/a") && QDir(m_game).mkdir("a"));
        archive({{"b"}}, 5);
        QCOMPARE(deploy("md5"), "access denied when deploy files!");
    }

    void deploysAgainWhenNeeded()
    {
        const QString both = "a=2 b b/c=1 d=2 own", only = "a=2 b d=2 own";
        const std::tuple<const char *, const char *, QString> rows[] = {
            {"md5", "", "a=1 b b/c=1 own"},
            {"unzip", "a=hand", "a=hand b b/c=1 own"},
            {"md5", "a=hand", only},
            {"md5", "a=", only},
            {"unchecked", "a=", "a= b b/c=1 own"},
            {"unchecked", "remove", only},
            {"unzip", "remove", both},
            {"unzip", "newer", both},
            {"md5", "newer", only},
        };
        for (const auto &[kind, change, tree] : rows) {
            init();
            makeFiles(m_game, {"own"});
            archive({{"a", "1"}, {"b/c", "1"}});
            QCOMPARE(deploy(kind), "");
            archive({{"a", "2"}, {"d", "2"}}, QByteArray(change) == "newer" ? 5 : -5);
            if (QByteArray(change).contains('='))
                makeFiles(m_game, {change});
            else if (QByteArray(change) == "remove")
                QVERIFY(QFile::remove(m_game + "/a"));
            g_GlobalDebugOptions.deployChecksumCheck = QByteArray(kind) != "unchecked";
            const QString reason = deploy(kind);
            g_GlobalDebugOptions.deployChecksumCheck = true;
            QCOMPARE(reason + treeOf(m_game), tree);
        }
    }

    void looksAtWholeSecondsAndAHundredFiles()
    {
        // Milliseconds from the deployment to the archive, and which file of the record is missing.
        const std::tuple<int, int, bool> rows[] = {
            {700, -1, false}, {-700, -1, false}, {800, -1, true}, {0, 99, true}, {0, 100, false}};
        for (const auto &[laterMs, missing, isDeployedAgain] : rows) {
            init();
            QStringList names;
            while (names.size() <= missing)
                names << QString::number(names.size());
            makeFiles(m_game, names);
            const QDateTime time(QDate(2024, 1, 1), QTime(12, 0, 0, 200));
            m_history->insertRecord(m_game, 7, names, time, false);
            archive({{"again"}});
            touch(time.addMSecs(laterMs));
            DeployRecordItem record; // in the order in which it is looked through
            QVERIFY(m_history->queryRecord(m_game, 7, record));
            const QString name = record.deployFiles.keys().value(missing);
            QVERIFY(missing < 0 || QFile::remove(m_game + '/' + name));
            QCOMPARE(deploy("unzip"), "");
            QCOMPARE(QFile::exists(m_game + "/again"), isDeployedAgain);
        }
    }

    void sweepsWhatEndedRunsLeft()
    {
        const QString left = "{8d7f0a1e-0000-4000-8000-000000000001}",
                      used = "{8d7f0a1e-0000-4000-8000-000000000002}",
                      free = "{8d7f0a1e-0000-4000-8000-000000000003}";
        makeFiles(m_game, {left + "/deep/x", free + "/x", free + ".lock", used + "/x", "{mine}/x"});
        auto lock = platform::FileLock::tryTake(m_game + '/' + used + ".lock");
        archive({{"a"}});
        QCOMPARE(deploy("unzip"), "");
        QCOMPARE(QDir(m_game).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
                 QStringList({"a", used, used + ".lock", "{mine}"}));
        lock.reset();
        // The next task clears that away, but leaves its own: it spares the home.
        FakeMachine machine;
        const auto task = make("unzip", 8, m_source, m_game);
        connect(task.get(), &TaskAbstract::progress,
                [&] { machine.home = m_game + '/' + QDir(m_game).entryList({"{*-*}"}).join(""); });
        task->run();
        machine.home.clear();
        QCOMPARE(deploy("unzip", 9, m_source, m_game), "");
        QCOMPARE(treeOf(m_game), "a {mine} {mine}/x");
        makeFiles(m_game, {left + "/x"});
        QCOMPARE(deploy("unzip"), "");
        QVERIFY(QFileInfo::exists(m_game + '/' + left));
    }

    void sixteenTasksShareAFolderAndAHistory()
    {
        std::vector<std::unique_ptr<DeployTask>> tasks;
        for (quint64 i = 1; i <= 16; ++i) {
            m_source = m_dir->filePath(QString::number(i));
            archive({{"mods/" + QByteArray::number(i)}});
            tasks.push_back(make("md5", i, m_source, m_game));
            QThreadPool::globalInstance()->start(tasks.back().get());
        }
        QVERIFY(QThreadPool::globalInstance()->waitForDone(20000));
        QCOMPARE(treeOf(m_game).count(' '), 16);
        DepHistoryFlatFile saved;
        saved.init(m_dir->filePath("deploy.cache"));
        for (auto *history : {m_history.get(), &saved})
            QCOMPARE(history->getDeployResInDeployFolder(m_game).size(), 16);
    }

    void aHistoryWaitsForItsDeployments()
    {
        auto core = std::make_unique<RivetCoreAtExitManagerUtil>();
        QSemaphore started;
        archive({{"a"}});
        DeployTaskWithUnzip task({m_source, m_game, 7, 0, DeployResRecorder::GetInstance()});
        task.setAutoDelete(false);
        connect(&task, &TaskAbstract::progress, [&] { started.release(); });
        QThreadPool::globalInstance()->start(&task);
        started.acquire();
        core.reset();
        QVERIFY(task.isFinished());
    }

    void aJavaIsDeployedWhenItRuns()
    {
        const QString game = QStandardPaths::findExecutable("scripted-game"),
                      path = m_game + "/jre/bin/javaw.exe", other = m_game + "/java.exe";
        qputenv("GAME_STEPS", "print os.arch|print java.version");
        archive({{"jre/bin/readme"}});
        QCOMPARE(deploy("java"), "unzip file is not expected.");
        QVERIFY(m_history->getDeployResInDeployFolder(m_game).isEmpty());

        const QByteArray script = "#!/bin/sh\nexec java \"$@\"\n";
        const bool isScript = QSysInfo::productType() != "windows";
        archive({{"jre/bin/javaw.exe", isScript ? script : *FS::readFile(game), 0100755}});
        QCOMPARE(deploy("java"), "");
        QCOMPARE(MCSettings().value("JavaPath", {}).toString(), path);
        archive({}, -5); // from now on unpacking fails
        QCOMPARE(deploy("java"), "");
        QVERIFY(QFile::copy(path, other));
        MCSettings().setValue("JavaPath", other);
        QCOMPARE(deploy("java"), "unzip failed.");
        MCSettings().setValue("JavaPath", path);
        QCOMPARE(deploy("java"), "");
        qputenv("GAME_STEPS", "print os.arch");
        QFile java(path);
        QVERIFY(!isScript || (java.open(QIODevice::WriteOnly) && java.write("echo os.arch") > 0));
        java.close();
        QCOMPARE(deploy("java"), "unzip failed.");
    }

    void strategiesClean()
    {
        const RivetCoreAtExitManagerUtil core;
        const QString before = "a b b/c b/d b/own own";
        const std::tuple<uint, QList<quint64>, const char *, QString> rows[] = {
            {1, {7}, "1 a b/c", "a b b/c"},
            {8, {}, "1 ", ""},
            {7, {7}, "1 b/c b/d", "a b b/c b/own own"},
            {7, {}, "1 a b/c b/c b/d", "b b/own own"},
            {2, {7}, "1 ", before},
        };
        for (const auto &[kind, wanted, result, tree] : rows) {
            init();
            makeFiles(m_game, {"a", "b/c", "b/d", "b/own", "own"});
            m_history->insertRecord(m_game, 7, {"a", "b/c"}, {}, false);
            m_history->insertRecord(m_game, 8, {"b/c", "b/d"}, {}, false);
            QCOMPARE(clean(kind, wanted), result);
            QCOMPARE(treeOf(m_game), tree);
        }
        // What leads out of the folder stays, be it by a name or by a link.
        for (const char kind : {3, 7}) {
            init();
            makeFiles(m_dir->path(), {"up", "aside/x", "game/b/x", "game/own"});
            makeLink(m_dir->filePath("aside"), m_game + "/link");
            const QStringList names{"../up", "b/../../up", "link/x", "b/x", m_dir->filePath("up")};
            m_history->insertRecord(m_game, 7, names, {}, false);
            const LogCapture log;
            QVERIFY(clean(kind, {}).startsWith(kind == 7 ? '0' : '1') || isWine());
            QCOMPARE(QFileInfo::exists(m_game + "/own"), kind == 7);
            QVERIFY(!QFileInfo::exists(m_game + "/b"));
            for (const char *outside : {"up", "aside/x"})
                QVERIFY(QFileInfo::exists(m_dir->filePath(outside)));
        }
    }

private:
    void touch(const QDateTime &time) const
    {
        QFile file(m_source);
        QVERIFY(file.open(QIODevice::Append) &&
                file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    void archive(const Items &items, int seconds = 0) const
    {
        QVERIFY(FS::writeFile(m_source, items.isEmpty() ? "x" : archiveOf("zip", items)));
        touch(QDateTime::currentDateTime().addSecs(seconds));
    }

    std::unique_ptr<DeployTask> make(const QString &kind, quint64 key, const QString &source,
                                     const QString &folder)
    {
        const DTskContext context{source, folder, key, 0, m_history.get()};
        std::unique_ptr<DeployTask> task;
        if (kind == "copy")
            task = std::make_unique<DeployTaskWithCopyFile>("pic.png", context);
        else if (kind == "unzip")
            task = std::make_unique<DeployTaskWithUnzip>(context);
        else if (kind == "java")
            task = std::make_unique<DeployJavaResTask>(context);
        else
            task = std::make_unique<DeployTaskWithUnzipMd5>(context);
        task->setAutoDelete(false);
        return task;
    }

    /// Why it failed.
    QString deploy(const QString &kind, quint64 key, const QString &source, const QString &folder)
    {
        const auto task = make(kind, key, source, folder);
        QEventLoop loop;
        connect(task.get(), &TaskAbstract::finished, &loop, &QEventLoop::quit);
        QThreadPool::globalInstance()->start(task.get());
        loop.exec();
        return task->failReason();
    }
    QString deploy(const QString &kind) { return deploy(kind, 7, m_source, m_game); }

    /// Whether it worked, and the result.
    QString clean(uint kind, QList<quint64> wanted)
    {
        const std::unique_ptr<DeployCleanTr> strategy(
            DeployCleanTrFacotry::GetInstance()->createDeployCleanTr(kind));
        strategy->Init(m_game, wanted, m_history.get());
        const bool success = strategy->Execute();
        QStringList result = strategy->getExecuteResult();
        result.sort();
        return QString::number(success) + ' ' + result.join(' ');
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_game, m_source;
    std::unique_ptr<DepHistoryFlatFile> m_history;
};

RIVET_SANDBOXED_TEST_MAIN(tst_Deployment)
#include "tst_Deployment.moc"
