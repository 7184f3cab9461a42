#include <functional>

#include <QNetworkInterface>
#include <QSemaphore>
#include <QThreadPool>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/config/GameResConfig.h"
#include "core/foundation/MCSettings.h"
#include "core/repair/QuickRepairTask.h"
#include "core/repair/RepairDnsTask.h"
#include "core/repair/RepairFileDeployTask.h"
#include "core/repair/RepairJavaEnvTask.h"
#include "core/repair/RepairOptimizeSysMemoryTask.h"
#include "platform/NameServers.h"
#include "support/coresupport/CCommonFunction.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestFiles.h"

namespace {

struct Step : TaskAbstract
{
    using TaskAbstract::emitSucceeded;
    explicit Step(QByteArray how) : end(std::move(how)) {}
    bool canAbort() const override { return false; }
    void onTaskRun() override
    {
        setTaskBrief(end);
        if (end == "good")
            emitSucceeded();
        if (end == "bad")
            setStatus("it is"), emitFailed("why");
    }
    const QByteArray end;
};

/// What is set lands on a list, with what "oldDns" is by then. Answers when the test lets it.
struct PaperServers final : platform::NameServers
{
    PaperServers() { replace(this); }
    ~PaperServers() override { replace(nullptr); }
    QString first() const override
    {
        mayAnswer.acquire();
        return address;
    }
    void run(const QString &command, std::chrono::milliseconds longest) const override
    {
        ran << command + (longest == std::chrono::seconds(10) ? " after " : " too long ") +
                   MCSettings().value("oldDns", {}).toString();
    }
    mutable QSemaphore mayAnswer;
    mutable QStringList ran;
    QString address;
};

const bool isWindows = QSysInfo::kernelType() == "winnt";

QString storyOf(TaskAbstract &task)
{
    TaskJournal journal(task);
    task.start();
    return await([&] { return task.isFinished(); }) ? journal.story() : "not finished";
}

const char javaIsGood[] = "brief Start repair java evn configured, "
                          "status repair java evn configured..., finished 1 ";
const char javaIsHeld[] =
    "brief Start repair java evn configured, status repair java evn configured..., "
    "status Java evn repair Failed, check is there some related process is running?, "
    "failed repair java env configured failed, finished 0 repair java env configured failed";

QString repairJava()
{
    RepairJavaEnvTask task;
    return storyOf(task);
}

} // namespace

class tst_Repair : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stepsRunInOrder()
    {
        const QPair<QList<QByteArray>, const char *> rows[] = {
            {{}, "finished 1 "},
            {{"good", "good"}, "brief good, brief good, finished 1 "},
            {{"good", "bad", "good"},
             "brief good, brief bad, status it is, failed why, failed why, finished 0 why"},
        };
        for (const auto &row : rows) {
            const LogCapture log;
            QuickRepairTask quick;
            quick.AppendRepairTask(nullptr);
            QVERIFY(log.has(QtWarningMsg, "launch task have not been created, null object."));
            for (const QByteArray &end : row.first)
                quick.AppendRepairTask(std::make_shared<Step>(end));
            QVERIFY(quick.canAbort());
            QCOMPARE(storyOf(quick), row.second);
        }
        QuickRepairTask quick;
        quick.AppendRepairTask(std::make_shared<Step>("never"));
        quick.start();
        QVERIFY(!quick.canAbort() && quick.isRunning());
    }

    void choicesAreForgotten()
    {
        const RivetCoreAtExitManagerUtil core;
        auto *config = GameResConfig::GetInstance();
        config->updateGameInstConfigFromRemote(2, {1ULL << 32 | 5, 1ULL << 32 | 6}, false);
        config->setGameInstanceConfig(1, {1ULL << 32 | 7}, false);
        config->setIgnoredRemoteGameInstCfg(2, {1ULL << 32 | 5}, false);
        QuickRepairTask quick;
        quick.AppendRepairTask(std::make_shared<RepairFileDeployTask>());
        quick.AppendRepairTask(std::make_shared<RepairOptimizeSysMemoryTask>());
        QCOMPARE(storyOf(quick), "brief repair game files configured, "
                                 "status repair game files configured..., "
                                 "brief Start optimize system memory, "
                                 "status optimize system memory..., finished 1 ");
        QVERIFY(config->getCustomGameInstCfgList(1).isEmpty());
        QVERIFY(config->getIgnoredRemoteDefaultGameInstCfgList(2).isEmpty());
        QCOMPARE(config->getRemoteDefaultGameInstCfgList(2).size(), 2);
    }

    void dnsIsSetBehindTheTask()
    {
        const QString form = isWindows
                                 ? "netsh interface ip set dns name=\"%1\" source=static addr=%2"
                                 : "resolvectl dns \"%1\" %2";
        QCOMPARE(platform::NameServers::command("my %2 net", "10.0.0.1"),
                 QString(form).replace("%2", "10.0.0.1").replace("%1", "my %2 net"));

        PaperServers servers;
        for (const QString old : {"10.0.0.1", "114.114.114.114"}) {
            auto core = std::make_unique<RivetCoreAtExitManagerUtil>();
            servers.address = old;
            servers.ran.clear();
            {
                RepairDnsTask task;
                QCOMPARE(storyOf(task), "brief Start repair dns, "
                                        "status repair dns to 114.114.114.114, finished 1 ");
            }
            core.reset();
            QVERIFY(servers.ran.isEmpty());
            servers.mayAnswer.release();
            QVERIFY(QThreadPool::globalInstance()->waitForDone(20000));
            QCOMPARE(MCSettings().value("oldDns", {}).toString(), old);
            QStringList wanted;
            for (const QNetworkInterface &each : QNetworkInterface::allInterfaces()) {
                if (each.flags() & QNetworkInterface::IsRunning)
                    wanted << form.arg(each.humanReadableName(), "114.114.114.114 after " + old);
            }
            QVERIFY(!wanted.isEmpty());
            QCOMPARE(servers.ran, wanted);
        }
    }

    void javaIsPutBack()
    {
        const RivetCoreAtExitManagerUtil core;
        const QTemporaryDir data;
        const QString stub = QStandardPaths::findExecutable("stub-java");
        MCSettings().setValue("DataPath", data.path());
        // The program that runs, JavaPath, whether the repair heeds the program, and whether it
        // removes the deployed Java once that has ended; paths are relative to the game data.
        const std::tuple<QString, QString, bool, bool> rows[] = {
            {"java/jre/bin/javaw.exe", "default", true, true},
            {"java/bin/java.exe", "%1/java/bin/java.exe", true, true},
            {"mine/java.exe", "%1/mine/java.exe", true, true},
            {"mine/java.exe", "", false, true},
            {"java/bin/javaw.exe", "%1/java/bin/javaw.exe", false, false},
            {"mine/JAVAW.exe", "%1/mine/JAVAW.exe", false, false},
        };
        for (const auto &[program, javaPath, isHeeded, isRemoved] : rows) {
            QVERIFY(FS::clearFolder(data.path(), {}, FS::ClearScope::WholeTree));
            makeFiles(data.path(), {"java/lib/rt.jar", program, "mods"});
            const QString path = data.filePath(program);
            QVERIFY(QFile::remove(path) && QFile::copy(stub, path));
            const QString tree = treeOf(data.path());
            MCSettings().setValue("JavaPath", QString(javaPath).replace("%1", data.path()));
            QProcess java;
            qputenv("STUB_STEPS", "until " + data.filePath("go").toUtf8());
            java.start(path, QStringList());
            QVERIFY(java.waitForStarted());
            QCOMPARE(repairJava(), isHeeded ? javaIsHeld : javaIsGood);
            QCOMPARE(MCSettings().value("JavaPath", {}).toString(), "default");
            QCOMPARE(MCSettings().value("JavaParam", {}).toString(),
                     CCommonFunction::GetDefaultJVMParam(true));
            QVERIFY2(!isHeeded || treeOf(data.path()) == tree, qPrintable(program));
            makeFiles(data.path(), {"go"});
            QVERIFY(java.waitForFinished());
            QVERIFY(!isHeeded || repairJava() == javaIsGood);
            QCOMPARE(QFile::exists(data.filePath("java")), !isRemoved);
        }
        // A file that can't be removed, which only Windows knows.
        makeFiles(data.path(), {"java/held"});
        QFile held(data.filePath("java/held"));
        QVERIFY(held.open(QIODevice::ReadOnly));
        QCOMPARE(repairJava(), isWindows ? javaIsHeld : javaIsGood);
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_Repair)
#include "tst_Repair.moc"
