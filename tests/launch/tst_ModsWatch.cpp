#include "core/launch/LaunchMcProcessFSW.h"
#include "tests/support/GameRun.h"

namespace {

/// A game that runs until the file "end" lies in its game base, and that is up.
struct WatchedRun : GameRun<LaunchMcProcessFSW>
{
    explicit WatchedRun(const QStringList &mods, const QString &user = "Steve")
        : GameRun("until %dir/end")
    {
        for (const QString &name : mods)
            touch(name);
        game->setArgs(LaunchMcProcess::ArgUserName, user);
        game->start();
        Q_UNUSED(QTest::qWaitFor([&] { return user.isEmpty() || states.contains("Running"); }))
    }

    QFileSystemWatcher *watcher() const { return game->findChild<QFileSystemWatcher *>(); }
    void touch(const QString &name) const { write(file(name), "old"); }
    void append(const QString &name) const
    {
        QFile mod(file(name));
        QVERIFY(mod.open(QIODevice::Append) && mod.write("x") == 1);
    }
    void change(const QString &what) const
    {
        const QStringList words = what.split(' ');
        const QString how = words.at(0), name = words.at(1);
        if (how == "append")
            append(name);
        else if (how == "touch")
            touch(name);
        else if (how == "remove") // Windows keeps a watched folder until its watch has gone.
            Q_UNUSED(FS::removeTree(file(name)))
        else
            QVERIFY(QFile::rename(file(name), file(words.at(2))));
    }
};

} // namespace

class tst_ModsWatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void changesEndTheGame()
    {
        const QStringList mods{"mods/a.jar", "mods/sub/b.zip", "mods/x.txt"};
        const QPair<QStringList, const char *> rows[] = {
            {mods, "append mods/a.jar"},
            {mods, "touch mods/a.jar"}, // written beside it and renamed
            {mods, "remove mods/a.jar"},
            {mods, "remove mods/sub/b.zip|touch mods/sub/b.zip"},
            {mods, "rename mods/x.txt mods/x.zip"},
            {mods, "touch mods/new/deep/c.class"},
            {mods, "rename mods aside|touch mods/a.jar|touch mods/sub/b.zip|touch mods/x.txt"},
            {mods, "rename mods aside"},
            {mods, "remove mods"},
            {{}, "touch mods/a.jar"}, // the launch has made the folder
        };
        for (const auto &[before, changes] : rows) {
            const WatchedRun run(before);
            for (const QString &change : QString(changes).split('|'))
                run.change(change);
            const auto isOver = [&] { return run.states.contains("Exited"); };
            QVERIFY2(QTest::qWaitFor(isOver, 20'000), changes);
            QCoreApplication::processEvents();
            QCOMPARE(run.story(), "Preparing Initializing Running Tampered Exited");
        }
    }

    void newFoldersAndThoseSwappedInAreWatched()
    {
        for (const QString folder : {"mods", "mods/sub", "mods/new"}) {
            WatchedRun run({"mods/sub/x.txt"});
            QSignalSpy seen(run.watcher(), &QFileSystemWatcher::directoryChanged);
            if (folder != "mods/new")
                run.change("rename " + folder + " aside");
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
        for (int i = 0; i < 10000; ++i) {
            const char *const names[] = {"mods/x.txt", "options.txt", "mods/#.cfg", "#.jar"};
            run.append(QString(names[i % 4]).replace('#', QString::number(i % 1000)));
            if (i % 100 == 0)
                QCoreApplication::processEvents();
        }
        run.write("end");
        QTRY_COMPARE(run.story(), "Preparing Initializing Running Exited");
        QVERIFY2(!run.watcher(), "still watched");
    }

    void aLaunchThatFailedIsWatchedNoMore()
    {
        const WatchedRun run({}, "");
        QVERIFY(!run.watcher());
        QCOMPARE(run.story(), "Preparing OtherError");
    }
};

QTEST_GUILESS_MAIN(tst_ModsWatch)
#include "tst_ModsWatch.moc"
