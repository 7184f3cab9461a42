#include "core/foundation/FSH.h"
#include "platform/FileLock.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

/// The real command in processes of its own. What would change the machine is only asked what it
/// would do.
class tst_RepairCommands : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void doesWhatItSays()
    {
        if (QSysInfo::productType() == "windows" && !isWine())
            QSKIP("would write into the user's own folders");
        const QTemporaryDir dir;
        const QString data = dir.filePath("data"), running = FSH::localAppDataPath() + "/running/";
        QCOMPARE(run("settings ChangedDataDir " + data), 0);
        const QString downloads = "resources resources/mods resources/mods/5=pay";
        const QString noJava = "instances instances/a=abc " + downloads;
        const QString all =
            "instances instances/a=abc java java/bin java/bin/javaw.exe " + downloads;
        const struct
        {
            const char *line, *lock;
            int exitCode;
            const char *says;
            QString left;
        } rows[] = {
            {"dns --dry-run", "", 0, "it becomes 114.114.114.114", all},
            {"firewall --open --dry-run --yes", "", 0, "Rivet Java", all},
            {"quick --dry-run", "", 0, "JavaPath", all},
            {"powerful --dry-run --yes", "", 0, "goes: 2 files, 4 bytes", all},
            {"dns", "", 2, "no terminal", all},
            {"firewall", "", 2, "no terminal", all},
            {"java", "", 2, "no terminal", all},
            {"quick", "", 2, "no terminal", all},
            {"powerful", "", 2, "no terminal", all},
            {"powerful --open --yes", "", 2, "--help", all},
            {"powerful --yes", "launch-1.lock", 1, "under way", all},
            {"java --yes", "", 0, "the repair is done", noJava},
            {"quick --yes", "", 0, "memory", noJava},
            {"powerful --yes", "", 0, "the repair is done", downloads},
        };
        for (const auto &row : rows) {
            makeFiles(data, {"instances/a=abc", "java/bin/javaw.exe", "resources/mods/5=pay"});
            makeFiles(running, {"launch-2.lock"}); // of a launch that was killed
            const auto lock = platform::FileLock::tryTake(running + row.lock);
            QCOMPARE(run("repair " + QString(row.line)), row.exitCode);
            QVERIFY2(m_said.contains(row.says), qUtf8Printable(m_said));
            QCOMPARE(treeOf(data), row.left);
        }
        const auto repair = platform::FileLock::tryTake(running + "repair.lock");
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
        const bool hasEnded = process.waitForFinished();
        m_said = QString::fromUtf8(process.readAll());
        return hasEnded ? process.exitCode() : -1;
    }

    QString m_said;
};

RIVET_SANDBOXED_TEST_MAIN(tst_RepairCommands)
#include "tst_RepairCommands.moc"
