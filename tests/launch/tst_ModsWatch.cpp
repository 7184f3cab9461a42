#include <QFileSystemWatcher>
#include <QtTest>

#include "core/launch/LaunchMcProcessFSW.h"
#include "tests/support/GameRun.h"
#include "tests/support/LogCapture.h"

namespace {

/// A game that runs until the file "end" lies in its directory.
struct WatchedRun : GameRun<LaunchMcProcessFSW>
{
    explicit WatchedRun(const QStringList &mods) : GameRun(QStringLiteral("until %dir/end"))
    {
        for (const QString &name : mods)
            touch(name, "old");
    }
    ~WatchedRun() { touch(QStringLiteral("end")); }

    bool isUp()
    {
        game->start();
        return QTest::qWaitFor([this] { return states.contains(QLatin1String("Running")); });
    }
    void append(const QString &name) const
    {
        QFile mod(file(name));
        QVERIFY(mod.open(QIODevice::Append) && mod.write("x") == 1);
    }
    void rename(const char *from, const char *to) const
    {
        QVERIFY(QFile::rename(file(QLatin1String(from)), file(QLatin1String(to))));
    }
    void remove(const char *name) const { QVERIFY(FS::removeTree(file(QLatin1String(name)))); }
};

} // namespace

class tst_ModsWatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void changesEndTheGame()
    {
        const QString a = QStringLiteral("mods/a.jar");
        const QStringList mods{a, QStringLiteral("mods/sub/b.zip"), QStringLiteral("mods/x.txt")};
        const struct
        {
            const char *name;
            QStringList mods;
            std::function<void(const WatchedRun &)> change;
        } rows[] = {
            {"changed", mods, [&](auto &run) { run.append(a); }},
            {"replaced by rename", mods, [&](auto &run) { run.touch(a, "old"); }},
            {"removed", mods, [&](auto &run) { run.remove("mods/a.jar"); }},
            {"gone and back", mods,
             [&](auto &run) {
                 run.remove("mods/sub/b.zip");
                 run.touch(QStringLiteral("mods/sub/b.zip"), "old");
             }},
            {"harmless file renamed", mods,
             [](auto &run) { run.rename("mods/x.txt", "mods/x.zip"); }},
            {"new in a new subfolder", mods,
             [](auto &run) { run.touch(QStringLiteral("mods/new/deep/c.class")); }},
            {"folder swapped", mods,
             [&](auto &run) {
                 run.rename("mods", "aside");
                 for (const QString &name : mods)
                     run.touch(name, "old");
             }},
            {"folder moved away", mods, [](auto &run) { run.rename("mods", "aside"); }},
            {"folder removed", mods, [](auto &run) { run.remove("mods"); }},
            {"new in an empty folder that was made", {}, [&](auto &run) { run.touch(a); }},
        };
        for (const auto &row : rows) {
            WatchedRun run(row.mods);
            QVERIFY(run.isUp());
            row.change(run);
            const auto isOver = [&] { return run.states.contains(QLatin1String("Exited")); };
            QVERIFY2(QTest::qWaitFor(isOver, 2000), row.name);
            QCoreApplication::processEvents();
            QCOMPARE(run.story(), QStringLiteral("Preparing Initializing Running Tampered Exited"));
        }
    }

    void aFolderThatIsSwappedStaysWatched()
    {
        for (const char *folder : {"mods", "mods/sub"}) {
            WatchedRun run({QStringLiteral("mods/sub/x.txt")});
            QVERIFY(run.isUp());
            auto *const watcher = run.game->findChild<QFileSystemWatcher *>();
            QSignalSpy seen(watcher, &QFileSystemWatcher::directoryChanged);
            run.rename(folder, "aside");
            run.touch(QLatin1String(folder) + QLatin1String("/x.txt"));
            QVERIFY(seen.wait());
            QCoreApplication::processEvents();
            QCOMPARE(run.states.size(), 3);
            run.touch(QLatin1String(folder) + QLatin1String("/new.jar"));
            QTRY_VERIFY(run.states.contains(QLatin1String("Tampered")));
        }
    }

    void harmlessWritesRaiseNoAlarm()
    {
        WatchedRun run({QStringLiteral("mods/a.jar"), QStringLiteral("mods/x.txt")});
        QVERIFY(run.isUp());
        for (int i = 0; i < 10000; ++i) {
            const char *const names[] = {"mods/x.txt", "options.txt", "mods/x%1.cfg", "x%1.jar"};
            QFile file(run.file(QString::fromLatin1(names[i % 4]).arg(i % 1000)));
            QVERIFY(file.open(QIODevice::Append) && file.write("x") == 1);
            if (i % 100 == 0)
                QCoreApplication::processEvents();
        }
        run.touch(QStringLiteral("end"));
        QTRY_COMPARE(run.story(), QStringLiteral("Preparing Initializing Running Exited"));
        QVERIFY2(!run.game->findChild<QFileSystemWatcher *>(), "still watched");
    }

    void aLaunchThatFailedIsNotTampered()
    {
        WatchedRun run({});
        run.game->setArgs(LaunchMcProcess::ArgUserName, {});
        run.game->start();
        QSignalSpy seen(run.game->findChild<QFileSystemWatcher *>(),
                        &QFileSystemWatcher::directoryChanged);
        run.touch(QStringLiteral("mods/a.jar"));
        QVERIFY(seen.wait());
        QCoreApplication::processEvents();
        QCOMPARE(run.story(), QStringLiteral("Preparing OtherError"));
    }
};

QTEST_GUILESS_MAIN(tst_ModsWatch)
#include "tst_ModsWatch.moc"
