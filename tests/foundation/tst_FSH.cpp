#include <memory>

#include <QProcess>
#include <QStorageInfo>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/foundation/Environment.h"
#include "core/foundation/FSH.h"
#include "core/foundation/MCSettings.h"
#include "support/jsonfskit/FS.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"

class tst_FSH : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void pathsLieBelowTheGameDataDirectory()
    {
        const bool hadAppData = QFileInfo::exists(FSH::localAppDataPath()); // on Windows it may
        const auto settings = Environment::GetInstance()->settings();
        settings->setValue("DataPath", "./rivet_game");
        const QString data = m_appDir + "/rivet_game";
        QVERIFY(FSH::gameDataAbsolutePath() == data && QFileInfo(data).isDir());
        QCOMPARE(FSH::instancePathDir(4000000000u, "%1 \"a\""),
                 data + "/instances/%1 \"a\"(4000000000)");
        const QString types = "1|mods|/mods 2|saves|/saves 3|resourcepacks|/resourcepacks 4||/java "
                              "5||/skins 6||/cloaks 7||/other 8|shaderpacks|/shaderpacks "
                              "101||/clients 0|| 9|| 102||";
        for (const QString &row : types.split(' ')) {
            const QStringList cells = row.split('|');
            const auto type = static_cast<ResType>(cells[0].toUInt());
            QCOMPARE(FSH::dirNameInGame(type), cells[1]);
            QCOMPARE(FSH::resourceDownloadDir(type), data + "/resources" + cells[2]);
        }
        QVERIFY(FSH::localAppDataPath().endsWith("/oriel/rivet"));
        QVERIFY2(QDir(data).isEmpty() && QFileInfo::exists(FSH::localAppDataPath()) == hadAppData,
                 "none is made");

        const LogCapture log;
        makeFiles(path(), {"file"});
        for (const QString &unusable : {path("file"), path("file/below"), QString()}) {
            settings->setValue("DataPath", unusable);
            QCOMPARE(FSH::instancePathDir(1, "x"), "/instances/x(1)");
        }
        QCOMPARE(log.lines().filter("it has not game data path.").size(), 2);
        QVERIFY(log.has(QtCriticalMsg, "game data path could not be empty!"));
    }

    void listsDirectoriesBeforeTheirContents()
    {
        makeFiles(path(), {"d/a", "d/.h/b"});
        QStringList list = FSH::getFileListFromDirRecursively(path("d"));
        QVERIFY(list.indexOf(path("d/.h")) < list.indexOf(path("d/.h/b")));
        list.sort();
        QCOMPARE(list, QStringList({path("d/.h"), path("d/.h/b"), path("d/a")}));
        QCOMPARE(FSH::getFileListFromDirRecursively(path("d/a")), QStringList());

        if (!QFile::link(path("d"), path("d/.h/up")) || !QFileInfo(path("d/.h/up")).isSymLink())
            QSKIP("no links here");
        QCOMPARE(FSH::getFileListFromDirRecursively(path("d")).size(), 4);
        QVERIFY(FSH::moveFileRecursively(path("d/.h"), path("t"), false));
        QCOMPARE(QFileInfo(path("t/up")).symLinkTarget(), path("d"));
        QCOMPARE(treeOf(path()), "d d/.h d/a t t/b t/up");
    }

    void moves()
    {
        // Before, from, to, "k" to keep the target, "y" when it succeeds, after.
        for (const char *row :
             {"a=1 b/c=2|a|b/d|k|y|b b/c=2 b/d=1", "a=1 b=2|a|b||y|b=1", "a=1 b=2|a|b|k||a=1 b=2",
              "b=2|no|b|||b=2", "a=1|a|a|||a=1", "s/a=1|s/a|s/../s/a|||s s/a=1",
              "a=1 dir/b=2|a|dir|||a=1 dir dir/b=2", "s/a=1 file=2|s|file|||file=2 s s/a=1",
              "s/.h=1 s/x/a=2 t/x/a=9|s|t||y|s s/x t t/.h=1 t/x t/x/a=2",
              "s/x/a=2 t/x/a=9|s|t|k||s s/x s/x/a=2 t t/x t/x/a=9",
              "s/a=1|s|s/in||y|s s/in s/in/a=1"}) {
            init();
            const QStringList cells = QString(row).split('|');
            const QString from = path(cells[1]), to = path(cells[2]);
            makeFiles(path(), cells[0].split(' '));
            const LogCapture log;
            const bool isDone = FSH::moveFileRecursively(from, to, cells[3] == "k");
            QVERIFY2(isDone == (cells[4] == "y"), row);
            QCOMPARE(treeOf(path()), cells[5]);
            QCOMPARE(log.has(QtDebugMsg, "delete file failed:" + to), to == path("dir"));
        }
    }

    void losesNothingBetweenFileSystems()
    {
        const QString from = qEnvironmentVariable("RIVET_FROM"),
                      to = qEnvironmentVariable("RIVET_TO");
        if (!from.isEmpty()) {
            QVERIFY(!FSH::moveFileRecursively(from, to, false));
            return;
        }
        const QTemporaryDir other("/dev/shm/tst_FSH-XXXXXX");
        if (!other.isValid() || QStorageInfo(other.path()) == QStorageInfo(path()) ||
            QStandardPaths::findExecutable("sh").isEmpty())
            QSKIP("one file system, or no shell to limit the size of a file");
        const QByteArray content(70000, 'x');
        const QString big = path("big"), target = other.filePath("big");
        QVERIFY(FS::writeFile(big, content) &&
                QFile::setPermissions(big, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        // Once more in a process for which the disk is full when the last block is written out.
        const QString script =
            "trap '' XFSZ; ulimit -f 128; export RIVET_FROM=\"$2\" RIVET_TO=\"$3\"; "
            "exec \"$0\" \"$1\"";
        const QString program = QCoreApplication::applicationFilePath();
        const QString function = QTest::currentTestFunction();
        QCOMPARE(QProcess::execute("sh", {"-c", script, program, function, big, target}), 0);
        QVERIFY(FS::readFile(big) == content && QDir(other.path()).isEmpty());

        QVERIFY(FSH::moveFileRecursively(big, target, true) && QDir(path()).isEmpty());
        QVERIFY(FS::readFile(target) == content && QFileInfo(target).isExecutable());
    }

    void readsTheVersionOfTheHost()
    {
        QCOMPARE(FSH::getRivetDisplayVer(), QString());
        // On Windows the copy brings the first row along as its version resource.
        const QString host = m_appDir + "/rivet.exe";
        QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), host));
        for (const char *row : {"1.2.7 Build-201607210|201607210", "1.2.7|0", "Build-|0",
                                "Build-12a, x|12", "Build-x1|0", "Build-99999999999|2147483647"}) {
            const QStringList cells = QString(row).split('|');
            const QString versions = "ProductVersion=1.2\nFileVersion=" + cells[0];
            QVERIFY(FS::writeFile(host + ".version", versions.toUtf8()));
            QCOMPARE(FSH::getRivetIntervalNumVer(), cells[1].toUInt());
            QCOMPARE(FSH::getRivetDisplayVer(), "1.2");
            if (QSysInfo::kernelType() == QLatin1String("winnt"))
                break;
        }
    }

private:
    QString path(const QString &name = "") const { return m_dir->filePath(name); }

    const RivetCoreAtExitManagerUtil m_core;
    const QString m_appDir = QCoreApplication::applicationDirPath();
    std::unique_ptr<QTemporaryDir> m_dir;
};

RIVET_SANDBOXED_TEST_MAIN(tst_FSH)
#include "tst_FSH.moc"
