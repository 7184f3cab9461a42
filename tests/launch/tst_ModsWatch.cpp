#include <QFileSystemWatcher>
#include <QtTest>

#include "core/launch/LaunchMcProcessFSW.h"
#include "tests/support/GameRun.h"

namespace {

/// A game that runs until the file "end" lies in its game base.
struct WatchedRun : GameRun<LaunchMcProcessFSW>
{
    explicit WatchedRun(const QStringList &mods) : GameRun("until %dir/end")
    {
        for (const QString &name : mods)
            touch(name, "old");
    }
    ~WatchedRun() { give("end"); }

    bool isUp()
    {
        game->start();
        return QTest::qWaitFor([this] { return states.contains("Running"); });
    }
    QFileSystemWatcher *watcher() const { return game->findChild<QFileSystemWatcher *>(); }
    void append(const QString &name) const
    {
        QFile mod(file(name));
        QVERIFY(mod.open(QIODevice::Append) && mod.write("x") == 1);
    }
    void rename(const QString &from, const QString &to) const
    {
        QVERIFY(QFile::rename(file(from), file(to)));
    }
    /// Windows keeps a watched folder until its watch has gone.
    void remove(const char *name) const { Q_UNUSED(FS::removeTree(file(name))) }
};

} // namespace

class tst_ModsWatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void changesEndTheGame()
    {
        const QString a = "mods/a.jar";
        const QStringList mods{a, "mods/sub/b.zip", "mods/x.txt"};
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
                 run.touch("mods/sub/b.zip", "old");
             }},
            {"harmless file renamed", mods,
             [](auto &run) { run.rename("mods/x.txt", "mods/x.zip"); }},
            {"new in a new subfolder", mods, [](auto &run) { run.touch("mods/new/deep/c.class"); }},
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
            const auto isOver = [&] { return run.states.contains("Exited"); };
            QVERIFY2(QTest::qWaitFor(isOver, 2000), row.name);
            QCoreApplication::processEvents();
            QCOMPARE(run.story(), "Preparing Initializing Running Tampered Exited");
        }
    }

    void newFoldersAndThoseSwappedInAreWatched()
    {
        for (const QString folder : {"mods", "mods/sub", "mods/new"}) {
            WatchedRun run({"mods/sub/x.txt"});
            QVERIFY(run.isUp());
            QSignalSpy seen(run.watcher(), &QFileSystemWatcher::directoryChanged);
            if (folder != "mods/new")
                run.rename(folder, "aside");
            run.touch(folder + "/x.txt");
            QVERIFY(seen.wait());
            QCoreApplication::processEvents();
            QCOMPARE(run.states.size(), 3);
            run.touch(folder + "/new.jar");
            QTRY_VERIFY(run.states.contains("Tampered"));
        }
    }

    void harmlessWritesRaiseNoAlarm()
    {
        WatchedRun run({"mods/a.jar", "mods/x.txt"});
        QVERIFY(run.isUp());
        for (int i = 0; i < 10000; ++i) {
            const char *const names[] = {"mods/x.txt", "options.txt", "mods/#.cfg", "#.jar"};
            QFile file(run.file(QString(names[i % 4]).replace('#', QString::number(i % 1000))));
            QVERIFY(file.open(QIODevice::Append) && file.write("x") == 1);
            if (i % 100 == 0)
                QCoreApplication::processEvents();
        }
        run.give("end");
        QTRY_COMPARE(run.story(), "Preparing Initializing Running Exited");
        QVERIFY2(!run.watcher(), "still watched");
    }

    void aLaunchThatFailedIsNotTampered()
    {
        WatchedRun run({});
        run.game->setArgs(LaunchMcProcess::ArgUserName, {});
        run.game->start();
        QSignalSpy seen(run.watcher(), &QFileSystemWatcher::directoryChanged);
        run.touch("mods/a.jar");
        QVERIFY(seen.wait());
        QCoreApplication::processEvents();
        QCOMPARE(run.story(), "Preparing OtherError");
    }

private:
    const WindowlessSystem m_system;
};

QTEST_GUILESS_MAIN(tst_ModsWatch)
#include "tst_ModsWatch.moc"
