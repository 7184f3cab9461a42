#include "core/foundation/FSH.h"
#include "platform/FileLock.h"
#include "tests/support/Await.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

/// The real command in processes of its own. What would change the machine is only asked what it
/// would do.
class tst_RepairCommands : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        if (QSysInfo::productType() == "windows" && !isWine())
            QSKIP("would write into the user's own folders");
        QCOMPARE(run("settings ChangedDataDir " + m_dir.filePath("data")), 0);
    }

    void doesWhatItSays_data()
    {
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("says");
        QTest::addColumn<QString>("left");
        const QString downloads = "resources resources/mods resources/mods/5=pay";
        const QString all =
            "instances instances/a=abc java java/bin java/bin/javaw.exe " + downloads;
        const auto row = [](const char *line, int exitCode, const char *says, const QString &left) {
            QTest::newRow(line) << exitCode << says << left;
        };
        row("dns --dry-run", 0, "it becomes 114.114.114.114", all);
        row("firewall --dry-run", 0, "rivet.exe", all);
        row("firewall --open --dry-run --yes", 0, "Rivet Java", all);
        row("java --dry-run", 0, "java", all);
        row("quick --yes --dry-run", 0, "JavaPath", all);
        row("powerful --dry-run", 0, "goes: 2 files, 4 bytes", all);
        row("powerful --dry-run --yes", 0, "stays: 1 files, 3 bytes", all);
        for (const char *kind : {"dns", "firewall", "java", "quick", "powerful"})
            row(kind, 2, "no terminal", all);
        row("", 2, "--help", all);
        row("all --yes", 2, "--help", all);
        row("powerful --open --yes", 2, "--help", all);
        row("java --yes", 0, "the repair is done", "instances instances/a=abc " + downloads);
        row("quick --yes", 0, "memory", "instances instances/a=abc " + downloads);
        row("powerful --yes", 0, "the repair is done", downloads);
        row("powerful --yes, locked", 1, "under way", all);
    }
    void doesWhatItSays()
    {
        QFETCH(int, exitCode);
        QFETCH(QString, says);
        QFETCH(QString, left);
        const QString data = m_dir.filePath("data"), records = FSH::localAppDataPath();
        makeFiles(data, {"instances/a=abc", "java/bin/javaw.exe", "resources/mods/5=pay"});
        QString line = QTest::currentDataTag();
        std::unique_ptr<platform::FileLock> launch;
        if (line.endsWith(", locked"))
            launch = platform::FileLock::tryTake(records + "/running/launch-1.lock");
        makeFiles(records, {"running/launch-2.lock"}); // of a launch that was killed
        QCOMPARE(run("repair " + line.remove(", locked")), exitCode);
        QVERIFY2(m_said.contains(says), qUtf8Printable(m_said));
        QCOMPARE(treeOf(data), left);
    }

    void noLaunchBesideARepair()
    {
        const auto repair =
            platform::FileLock::tryTake(FSH::localAppDataPath() + "/running/repair.lock");
        QVERIFY(repair);
        QCOMPARE(run("launch 9"), 1);
        QVERIFY2(m_said.contains("a repair is under way"), qUtf8Printable(m_said));
    }

private:
    int run(const QString &line)
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        // Should a guard ever fail, the tool that sets name servers is not found.
        if (!isWine())
            environment.insert("PATH", "/nowhere");
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStandardPaths::findExecutable("rivet"), line.split(' ', Qt::SkipEmptyParts));
        process.closeWriteChannel();
        if (!await([&] { return process.state() == QProcess::NotRunning; }))
            return -1;
        m_said = QString::fromUtf8(process.readAll());
        return process.exitCode();
    }

    const QTemporaryDir m_dir;
    QString m_said;
};

RIVET_SANDBOXED_TEST_MAIN(tst_RepairCommands)
#include "tst_RepairCommands.moc"
