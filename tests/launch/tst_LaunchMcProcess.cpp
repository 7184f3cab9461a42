#include <QtTest>

#include "core/launch/LaunchMcProcess.h"
#include "tests/support/GameRun.h"
#include "tests/support/LogCapture.h"

using Game = LaunchMcProcess;

#define STORY(run, text) QTRY_COMPARE_WITH_TIMEOUT((run).story(), text, 10000)

class tst_LaunchMcProcess : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_system = std::make_unique<WindowlessSystem>(); }
    void cleanup() { m_system.reset(); }

    void argumentsArriveAsTheTemplateSays()
    {
        GameRun<> run("args|until %dir/go",
                      "two  blanks\r\n\r\n\"q\" \\\"\\\n100%x%%UUID%\nC:\\end \\\\\r\n*\n"
                      "%GameBase%;%InstanceDir%\n%UserName%\n%AccessToken%\n-a%authlib%\t",
                      "我 a's%1");
        run.game->setArgs(Game::ArgJavaParam, "  -Xmx1G   -D=\\ ");
        run.game->setArgs(Game::ArgUserName, "first");
        run.game->setArgs(Game::ArgUserName, "玩é?");
        run.game->setArgs(Game::ArgServer, "h");
        run.game->setArgs(Game::ArgPort, "25565");
        run.game->setProcessWorkingDir(run.instance);
        run.game->start();
        STORY(run, "Preparing Initializing Running Exited");
        QCOMPARE(run.output(),
                 "[-Xmx1G]\n[-D=\\]\n[two  blanks]\n[]\n[\"q\" \\\"\\]\n[100%x%${auth_uuid}]\n"
                 "[C:\\end \\\\]\n[*]\n[" +
                     (run.dir.path() + ';' + run.instance).toUtf8() +
                     "]\n[?\xef\xbf\xbd?]\n[${auth_access_token}]\n[-a-oriel\t]\n[--server]\n[h]\n"
                     "[--port]\n[25565]\n");
    }

    void whatIsMissingIsLogged()
    {
        const QPair<int, QString> rows[] = {
            {Game::ArgJavaPath, "javaw.exe path"},
            {Game::ArgGameBase, "game base path"},
            {Game::ArgInstanceDir, "game instance path"},
            {Game::ArgUserName, "user name"},
            {Game::ArgUUID, "uuid"},
            {Game::ArgAccessToken, "access token"},
            {Game::ArgSession, "session"},
        };
        GameRun<> run;
        for (int i = 6; i >= 0; --i) {
            const LogCapture log;
            run.game->setArgs(Game::ArgsKey(rows[i].first), {});
            run.states.clear();
            run.game->start();
            QCOMPARE(run.story(), "Preparing OtherError");
            QCOMPARE(log.lines(), {rows[i].second + " could not been empty!!!"});
        }
        const LogCapture log;
        run.game->setArgs(Game::ArgsKey(10), "x");
        QCOMPARE(run.game->getArgsValue(Game::ArgsKey(10)), QString());
        QVERIFY(log.lines().count("the arg key 10 have not been registed.") == 2);
    }

    void theEndIsTold()
    {
        const struct
        {
            const char *steps, *story;
        } rows[] = {
            {"until %dir/go", "Preparing Initializing Running Exited"},
            {"until %dir/go|exit 3", "Preparing Initializing Running Crashed Exited"},
            {"until %dir/go|crash", "Preparing Initializing Running Crashed Exited"},
            {"child %dir/later|until %dir/go", "Preparing Initializing Running Exited"},
            {nullptr, "Preparing FailedToStart"},
        };
        for (const auto &row : rows) {
            GameRun<> run(row.steps);
            if (!row.steps)
                run.game->setArgs(Game::ArgJavaPath, run.file("no java"));
            run.game->start();
            QTRY_COMPARE_WITH_TIMEOUT(run.story(), row.story, 10000);
            QVERIFY(!run.game->abort());
            run.give("later");
        }
        const LogCapture log;
        GameRun<> run;
        run.game->setArgs(Game::ArgGameBase, run.instance);
        run.game->start();
        STORY(run, "Preparing FailedToStart");
        QVERIFY(log.has(QtCriticalMsg, "open bat file to read failed!"));
    }

    void outputOfTwoRunsIsKept()
    {
        GameRun<> run("until %dir/go|flood 4|print end|crash");
        for (int i = 0; i < 3; ++i) {
            run.states.clear();
            QFile::remove(run.dir.filePath("go"));
            run.game->start();
            STORY(run, "Preparing Initializing Running Crashed Exited");
        }
        QCOMPARE(run.output().size(), 4 * 1024 * 1024 + 4);
        QVERIFY(run.output().endsWith(".\nend\n"));
        QCOMPARE(run.output("game-output.previous.log"), run.output());
    }

    void aGameWithoutItsDirectoryStillRuns()
    {
        GameRun<> run("print x");
        QVERIFY(FS::writeFile(run.instance, "a file"));
        m_system->comesUp = false;
        const LogCapture log;
        run.game->start();
        STORY(run, "Preparing Initializing Exited");
        QVERIFY(log.lines().filter("could not be").size() == 4);
    }

    void abortedAtEveryMoment()
    {
        const struct
        {
            int at;
            bool comesUp, canEnd, aborted;
            const char *story;
        } rows[] = {
            {Game::StatePreparing, true, true, false, "Preparing Initializing Running Exited"},
            {-1, true, true, true, "Preparing Initializing Exited"},
            {Game::StateInitializing, true, true, true, "Preparing Initializing Exited"},
            {Game::StateInitializing, false, true, true, "Preparing Initializing Exited"},
            {Game::StateRunning, true, true, true, "Preparing Initializing Running Exited"},
            {Game::StateRunning, true, false, true, "Preparing Initializing Running Exited"},
            {Game::StateExited, true, true, false, "Preparing Initializing Running Exited"},
        };
        for (const auto &row : rows) {
            const LogCapture log;
            m_system->comesUp = row.comesUp;
            m_system->canEnd = row.canEnd;
            GameRun<> run(row.aborted ? "until %dir/never" : "until %dir/go");
            QVERIFY(!run.game->abort());
            bool aborted = false;
            run.onState = [&](int state) {
                if (state == row.at)
                    aborted = run.game->abort();
            };
            run.game->start();
            if (row.at < 0)
                aborted = run.game->abort();
            QTRY_COMPARE_WITH_TIMEOUT(run.story(), row.story, 10000);
            m_system->comesUp = true;
            QTRY_VERIFY(run.game->children().isEmpty());
            QCOMPARE(run.story(), row.story);
            QCOMPARE(aborted, row.aborted);
            QCOMPARE(log.has(QtCriticalMsg, "open minecraft process failed with error 5"),
                     !row.canEnd);
        }
    }

    void deletedAtEveryMoment()
    {
        for (int state = Game::StatePreparing; state <= Game::StateCrashed; ++state) {
            GameRun<> run("until %dir/go|crash");
            if (state == Game::StateFailedToStart)
                run.game->setArgs(Game::ArgJavaPath, run.file("no java"));
            run.onState = [&](int now) {
                if (now == state)
                    run.game.reset();
            };
            run.game->start();
            QTRY_VERIFY(!run.game);
        }
        m_system->comesUp = false;
        GameRun<> run;
        run.game->start();
        STORY(run, "Preparing Initializing");
        run.game.reset();
    }

    void theWindowGetsItsTitle()
    {
        m_system.reset();
        const QString title = "Oriel 我";
        GameRun<> run("until %dir/show|window|title|until %dir/go");
        run.game->setMCWindowTitle(title);
        run.game->start();
        STORY(run, "Preparing Initializing");
        run.give("show");
        STORY(run, "Preparing Initializing Running Exited");
        QCOMPARE(run.output(), "opened\n" + title.toUtf8() + '\n');
    }

private:
    std::unique_ptr<WindowlessSystem> m_system;
};

QTEST_GUILESS_MAIN(tst_LaunchMcProcess)
#include "tst_LaunchMcProcess.moc"
