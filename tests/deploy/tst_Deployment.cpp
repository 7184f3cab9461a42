#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/deploy/DepHistoryFlatFile.h"
#include "core/deploy/DeployCleanTr.h"
#include "core/deploy/DeployCleanTrFacotry.h"
#include "core/deploy/DeployJavaResTask.h"
#include "core/deploy/DeployTaskWithCopyFile.h"
#include "core/deploy/DeployTaskWithUnzipMd5.h"
#include "core/foundation/MCSettings.h"
#include "platform/FileLock.h"
#include "support/coresupport/GlobalDebugOptions.h"
#include "tests/support/Archives.h"
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
        QVERIFY(FS::writeFile(m_source, archiveOf("zip", {{"b"}})));
        touch(m_source, 5);
        QCOMPARE(deploy("md5"), "access denied when deploy files!");
    }

    void deploysAgainWhenNeeded()
    {
        const struct
        {
            const char *kind, *change, *tree;
        } rows[] = {
            {"md5", "", "a=1 b b/c=1 own"},
            {"unzip", "a=hand", "a=hand b b/c=1 own"},
            {"md5", "a=hand", "a=2 b d=2 own"},
            {"md5", "a=", "a=2 b d=2 own"},
            {"unchecked", "a=", "a= b b/c=1 own"},
            {"unchecked", "remove a", "a=2 b d=2 own"},
            {"unzip", "remove a", "a=2 b b/c=1 d=2 own"},
            {"unzip", "newer", "a=2 b b/c=1 d=2 own"},
            {"md5", "newer", "a=2 b d=2 own"},
        };
        for (const auto &[kind, change, tree] : rows) {
            init();
            makeFiles(m_game, {"own"});
            QVERIFY(FS::writeFile(m_source, archiveOf("zip", {{"a", "1"}, {"b/c", "1"}})));
            QCOMPARE(deploy(kind), "");
            QVERIFY(FS::writeFile(m_source, archiveOf("zip", {{"a", "2"}, {"d", "2"}})));
            touch(m_source, QByteArray(change) == "newer" ? 5 : -5);
            if (QByteArray(change).contains('='))
                makeFiles(m_game, {change});
            else if (QByteArray(change).startsWith("remove"))
                QVERIFY(QFile::remove(m_game + "/a"));
            g_GlobalDebugOptions.deployChecksumCheck = QByteArray(kind) != "unchecked";
            const QString reason = deploy(kind);
            g_GlobalDebugOptions.deployChecksumCheck = true;
            QVERIFY2(reason.isEmpty() && treeOf(m_game) == tree,
                     qPrintable(QString("%1 %2: %3").arg(kind, change, treeOf(m_game))));
        }
        QVERIFY(FS::writeFile(m_source, "new picture"));
        touch(m_source, 9);
        QCOMPARE(deploy("copy"), "");
        QCOMPARE(deploy("copy"), "");
        QVERIFY(FS::readFile(m_game + "/pic.png") == QByteArray("new picture"));
    }

    void aRecordHoldsTheFirst101Files()
    {
        Items items;
        for (int i = 0; i < 150; ++i)
            items << Item{QByteArray::number(i)};
        QVERIFY(FS::writeFile(m_source, archiveOf("zip", items)));
        QCOMPARE(deploy("md5"), "");
        DeployRecordItem record;
        QVERIFY(m_history->queryRecord(m_game, 7, record) && record.deployFiles.size() == 101);
        for (int i = 0; i < 150; ++i) {
            if (!record.deployFiles.contains(QString::number(i)))
                QVERIFY(QFile::remove(m_game + '/' + QString::number(i)));
        }
        QCOMPARE(deploy("md5"), "");
        QCOMPARE(QDir(m_game).count(), 101u + 2);
    }

    void sweepsWhatEndedRunsLeft()
    {
        const QString left = "{8d7f0a1e-0000-4000-8000-000000000001}",
                      used = QString(left).replace(36, 1, "2"),
                      locked = QString(left).replace(36, 1, "3");
        makeFiles(m_game, {left + "/.rivet-unpack-1/new/x", locked + "/x", used + "/x", "{mine}/x",
                           locked + ".lock"});
        auto lock = platform::FileLock::tryTake(m_game + '/' + used + ".lock");
        QVERIFY(lock);
        QVERIFY(FS::writeFile(m_source, archiveOf("zip", {{"a"}})));
        QCOMPARE(deploy("unzip"), "");
        QCOMPARE(QDir(m_game).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
                 QStringList({"a", used, used + ".lock", "{mine}"}));
        lock.reset();
        QCOMPARE(deploy("unzip"), "");
        QCOMPARE(treeOf(m_game), "a {mine} {mine}/x");
    }

    void sixteenTasksShareAFolderAndAHistory()
    {
        for (int round = 0; round < 5; ++round) {
            init();
            std::vector<std::unique_ptr<DeployTask>> tasks;
            for (int i = 1; i <= 16; ++i) {
                const QByteArray name = QByteArray::number(i);
                QVERIFY(FS::writeFile(m_source + name, archiveOf("zip", {{"mods/" + name}})));
                tasks.push_back(make("md5", quint64(i), m_source + name, m_game));
            }
            for (const auto &task : tasks)
                QThreadPool::globalInstance()->start(task.get());
            QVERIFY(QThreadPool::globalInstance()->waitForDone(20000));
            for (const auto &task : tasks)
                QVERIFY(task->successful());
            tasks.clear();
            QCOMPARE(treeOf(m_game).count("mods/"), 16);
            QVERIFY(!treeOf(m_game).contains('{'));
            DepHistoryFlatFile saved;
            saved.init(m_dir->filePath("deploy.cache"));
            for (auto *history : {m_history.get(), &saved})
                QCOMPARE(history->getDeployResInDeployFolder(m_game).size(), 16);
        }
    }

    void aJavaIsDeployedWhenItRuns()
    {
        const bool isWindows = QSysInfo::productType() == "windows";
        const QByteArray java =
            isWindows ? FS::readFile(stub()).value() : "#!/bin/sh\nexec java \"$@\"\n";
        qputenv("STUB_STEPS", "print os.arch|print java.version");
        QVERIFY(FS::writeFile(m_source, archiveOf("zip", {{"jre/bin/readme"}})));
        QCOMPARE(deploy("java"), "unzip file is not expected.");
        QVERIFY(m_history->getDeployResInDeployFolder(m_game).isEmpty());

        QVERIFY(FS::writeFile(m_source, archiveOf("zip", {{"jre/bin/javaw.exe", java, 0100755}})));
        QCOMPARE(deploy("java"), "");
        const QString path = m_game + "/jre/bin/javaw.exe";
        QCOMPARE(MCSettings().value("JavaPath", {}).toString(), path);
        // Would fail if it were unpacked.
        QVERIFY(FS::writeFile(m_source, "x"));
        touch(m_source, -5);
        QCOMPARE(deploy("java"), "");
        QVERIFY(QFile::copy(path, m_game + "/java.exe"));
        MCSettings().setValue("JavaPath", m_game + "/java.exe");
        QCOMPARE(deploy("java"), "unzip failed.");
        MCSettings().setValue("JavaPath", path);
        QCOMPARE(deploy("java"), "");
        qputenv("STUB_STEPS", "print os.arch");
        if (!isWindows) {
            QFile script(path);
            QVERIFY(script.open(QIODevice::WriteOnly) && script.write("#!/bin/sh\necho os.arch\n"));
        }
        QCOMPARE(deploy("java"), "unzip failed.");
    }

    void strategiesClean()
    {
        const RivetCoreAtExitManagerUtil core;
        const QString before = "a b b/c b/d b/own own";
        const struct
        {
            uint kind;
            QList<quint64> wanted;
            QString tree, result;
        } rows[] = {
            {1, {7}, "a b b/c", "a b/c"},
            {3, {7, 8}, "a b b/c b/d", "a b/c b/c b/d"},
            {8, {}, "", ""},
            {7, {7}, "a b b/c b/own own", "b/c b/d"},
            {7, {7, 8}, before, ""},
            {7, {}, "b b/own own", "a b/c b/c b/d"},
            {2, {}, before, ""},
            {101, {7}, before, ""},
        };
        for (const auto &row : rows) {
            init();
            makeFiles(m_game, {"a", "b/c", "b/d", "b/own", "own"});
            m_history->insertRecord(m_game, 7, {"a", "b/c"}, {}, false);
            m_history->insertRecord(m_game, 8, {"b/c", "b/d"}, {}, false);
            const auto [success, result] = clean(row.kind, row.wanted);
            QVERIFY(success);
            QCOMPARE(result, row.result);
            QCOMPARE(treeOf(m_game), row.tree);
            const int left = row.kind == 2 || row.kind == 101 ? 2 : row.wanted.size();
            QCOMPARE(m_history->getDeployResInDeployFolder(m_game).size(), left);
        }
    }

    void nothingOutsideOfTheFolderGoes()
    {
        const RivetCoreAtExitManagerUtil core;
        const QString absolute = m_dir->filePath("absolute");
        for (const uint kind : {1, 7}) {
            init();
            makeFiles(m_dir->path(), {"up", "absolute", "aside/x", "game/b/gone/x", "game/own"});
            makeLink(m_dir->filePath("aside"), m_game + "/link");
            m_history->insertRecord(m_game, 7, {"../up", "b/../../up", "link/x", "b/gone/x"}, {},
                                    false);
            m_history->insertRecord(m_dir->path(), 8, {"up"}, {}, false);
            const LogCapture log;
            const auto [success, result] = clean(kind, {});
            QVERIFY(success == (kind == 1) || isWine());
            QVERIFY(!QFileInfo::exists(m_game + "/b"));
            QVERIFY(QFileInfo::exists(m_dir->filePath("up")));
            QVERIFY(QFileInfo::exists(m_dir->filePath("aside/x")));
            QCOMPARE(QFileInfo::exists(m_game + "/own"), kind == 7);
        }
    }

private:
    static QString stub() { return QStandardPaths::findExecutable("stub-java"); }

    static void touch(const QString &path, int seconds)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append) &&
                file.setFileTime(QDateTime::currentDateTime().addSecs(seconds),
                                 QFileDevice::FileModificationTime));
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

    QPair<bool, QString> clean(uint kind, QList<quint64> wanted)
    {
        const std::unique_ptr<DeployCleanTr> strategy(
            DeployCleanTrFacotry::GetInstance()->createDeployCleanTr(kind));
        strategy->Init(m_game, wanted, m_history.get());
        const bool success = strategy->Execute();
        QStringList result = strategy->getExecuteResult();
        result.sort();
        return {success, result.join(' ')};
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_game, m_source;
    std::unique_ptr<DepHistoryFlatFile> m_history;
};

RIVET_SANDBOXED_TEST_MAIN(tst_Deployment)
#include "tst_Deployment.moc"
