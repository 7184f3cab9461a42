#include <QNetworkInterface>

#include "core/config/GameResConfig.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/QuickRepairTask.h"
#include "core/repair/RepairDnsTask.h"
#include "core/repair/RepairFileDeployTask.h"
#include "core/repair/RepairJavaEnvTask.h"
#include "core/repair/RepairOptimizeSysMemoryTask.h"
#include "platform/NameServers.h"
#include "support/coresupport/CCommonFunction.h"
#include "tests/support/CoreRun.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestFiles.h"

namespace {

/// Ends as its name says.
struct Step : TaskAbstract
{
    explicit Step(const QString &name) { setObjectName(name); }
    void onTaskRun() override
    {
        setTaskBrief(objectName());
        const QString end = objectName();
        end == "good" ? emitSucceeded() : end == "bad" ? emitFailed("why") : setStatus("busy");
    }
};

/// Writes down what is set, with what "oldDns" is by then. Answers when the test lets it.
struct PaperServers final : platform::NameServers
{
    PaperServers() { replace(this); }
    /// Not before the work has ended, which else would find the real ones.
    ~PaperServers() override
    {
        mayAnswer.release(), QThreadPool::globalInstance()->waitForDone(), replace(nullptr);
    }
    QString first() const override { return mayAnswer.acquire(), address; }
    void run(const QString &command, std::chrono::milliseconds) const override
    {
        ran << command + ' ' + MCSettings().value("oldDns", {}).toString();
    }
    mutable QSemaphore mayAnswer;
    mutable QStringList ran;
    QString address;
};

const bool isWindows = QSysInfo::kernelType() == "winnt";

const QString javaBegins = "brief Start repair java evn configured, "
                           "status repair java evn configured..., ";
const QString javaIsGood = javaBegins + "finished 1 ";
const QString javaIsHeld =
    javaBegins +
    "status Java evn repair Failed, check is there some related process is running?, "
    "failed repair java env configured failed, finished 0 repair java env configured failed";

QString storyOf(TaskAbstract &&task)
{
    TaskJournal journal(task);
    task.start();
    return await([&] { return task.isFinished(); }) ? journal.story() : "not finished";
}

} // namespace

class tst_Repair : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stepsRunInOrder()
    {
        const QPair<QString, QString> rows[] = {
            {"", "finished 1 "},
            {"good good", "brief good, brief good, finished 1 "},
            {"good bad good", "brief good, brief bad, failed why, failed why, finished 0 why"},
            {"good endless", "brief good, brief endless, status busy"},
        };
        for (const auto &[names, story] : rows) {
            QuickRepairTask quick;
            TaskJournal journal(quick);
            quick.AppendRepairTask({});
            for (const QString &name : names.split(' ', Qt::SkipEmptyParts)) {
                const auto step = std::make_shared<Step>(name);
                connect(step.get(), &Step::taskBrief, &quick, &Step::setStatus); // is dropped
                quick.AppendRepairTask(step);
            }
            QVERIFY(quick.canAbort());
            quick.start();
            QCOMPARE(journal.story(), story);
            QCOMPARE(quick.canAbort(), names.isEmpty());
        }
    }

    void choicesAreForgotten()
    {
        const RivetCoreAtExitManagerUtil core;
        auto *config = GameResConfig::GetInstance();
        config->updateGameInstConfigFromRemote(2, {1ULL << 32 | 5, 1ULL << 32 | 6}, false);
        config->setGameInstanceConfig(1, {1ULL << 32 | 7}, false);
        config->setIgnoredRemoteGameInstCfg(2, {1ULL << 32 | 5}, false);
        QCOMPARE(storyOf(RepairFileDeployTask()), "brief repair game files configured, status "
                                                  "repair game files configured..., finished 1 ");
        QVERIFY(config->getCustomGameInstCfgList(1).isEmpty() &&
                config->getIgnoredRemoteDefaultGameInstCfgList(2).isEmpty());
        QCOMPARE(config->getRemoteDefaultGameInstCfgList(2).size(), 2);
        QVERIFY(storyOf(RepairOptimizeSysMemoryTask()).endsWith("memory..., finished 1 "));
    }

    void dnsIsSetBehindTheTask()
    {
        const QString form = isWindows
                                 ? "netsh interface ip set dns name=\"%1\" source=static addr=%2"
                                 : "resolvectl dns \"%1\" %2";
        QCOMPARE(platform::NameServers::command("a %2 net", "::1"), form.arg("a %2 net", "::1"));
        // What the system's own does, short of a change.
        const auto &own = platform::NameServers::current();
        const QTemporaryDir dir;
        const QString folder = QDir::toNativeSeparators(dir.filePath("a net"));
        own.run((isWindows ? "cmd /c mkdir \"" : "mkdir \"") + folder + '"',
                std::chrono::minutes(1));
        QVERIFY(QFile::exists(folder));
        QVERIFY(own.first().isEmpty() || !QHostAddress(own.first()).isNull());
        PaperServers servers;
        for (const QString old : {"10.0.0.1", "114.114.114.114"}) {
            QStringList wanted;
            for (const QNetworkInterface &each : QNetworkInterface::allInterfaces()) {
                if (each.flags() & 2)
                    wanted << form.arg(each.humanReadableName(), "114.114.114.114 " + old);
            }
            servers.address = old;
            QCOMPARE(storyOf(RepairDnsTask()), "brief Start repair dns, status repair dns to "
                                               "114.114.114.114, finished 1 ");
            // The work goes on, without task and core.
            QVERIFY(servers.ran.isEmpty());
            servers.mayAnswer.release();
            QVERIFY(QThreadPool::globalInstance()->waitForDone(20000) && !wanted.isEmpty());
            QCOMPARE(std::exchange(servers.ran, {}), wanted);
        }
    }

    void javaIsPutBack()
    {
        const RivetCoreAtExitManagerUtil core;
        const QTemporaryDir data;
        MCSettings().setValue("DataPath", data.path());
        // The program that runs, JavaPath, whether the repair heeds that, and whether the deployed
        // Java is gone once the program has ended and that is repaired again.
        const std::tuple<QString, QString, bool, bool> rows[] = {
            {"java/jre/bin/javaw.exe", "default", true, true},
            {"java/bin/java.exe", "%1/java/bin/java.exe", true, true},
            {"mine/java.exe", "%1/mine/java.exe", true, true},
            {"java/bin/javaw.exe", "%1/java/bin/javaw.exe", false, false},
            {"mine/JAVAW.exe", "%1/mine/JAVAW.exe", false, false},
        };
        for (const auto &[program, javaPath, isHeeded, isRemoved] : rows) {
            QVERIFY(FS::clearFolder(data.path(), {}, FS::ClearScope::WholeTree));
            makeFiles(data.path(), {"java/lib/rt.jar", program});
            const QString path = data.filePath(program);
            QFile::remove(path), QFile::copy(QStandardPaths::findExecutable("scripted-game"), path);
            const QString tree = treeOf(data.path());
            MCSettings().setValue("JavaPath", QString(javaPath).replace("%1", data.path()));
            qputenv("GAME_STEPS", "until " + data.filePath("go").toUtf8());
            QProcess java;
            java.start(path, QStringList());
            QVERIFY(java.waitForStarted());
            QCOMPARE(storyOf(RepairJavaEnvTask()), isHeeded ? javaIsHeld : javaIsGood);
            QCOMPARE(MCSettings().value("JavaPath", {}).toString(), "default");
            QCOMPARE(MCSettings().value("JavaParam", {}).toString(),
                     CCommonFunction::GetDefaultJVMParam(true));
            QVERIFY2(!isHeeded || treeOf(data.path()) == tree, qPrintable(program));
            makeFiles(data.path(), {"go"});
            QVERIFY(java.waitForFinished());
            QVERIFY(!isHeeded || storyOf(RepairJavaEnvTask()) == javaIsGood);
            QCOMPARE(!QFile::exists(data.filePath("java")), isRemoved);
        }
        // Removal fails where it meets a file that is open, which only Windows does.
        makeFiles(data.path(), {"java/open"});
        QFile open(data.filePath("java/open"));
        QVERIFY(open.open(QIODevice::ReadOnly));
        QCOMPARE(storyOf(RepairJavaEnvTask()), isWindows ? javaIsHeld : javaIsGood);
        open.close(), makeFiles(data.path(), {"java/open"});
        MCSettings().setValue("JavaPath", "mine");
        RepairJavaEnvTask().start(); // goes at once, and the work on
        QVERIFY(QThreadPool::globalInstance()->waitForDone(20000));
        QCOMPARE(MCSettings().value("JavaPath", {}).toString(), "default");
        QVERIFY(!QFile::exists(data.filePath("java")));
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Repair)
#include "tst_Repair.moc"
