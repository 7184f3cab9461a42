#include "core/launch/LaunchMcProcess.h"
#include "tests/support/GameRun.h"
#include "tests/support/LogCapture.h"

using Game = LaunchMcProcess;

#define STORY(run, text) QTRY_COMPARE_WITH_TIMEOUT((run).story(), text, 10000)

class tst_LaunchMcProcess : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void argumentsArriveAsTheTemplateSays()
    {
        GameRun<> run("args|until %dir/go",
                      "two  blanks\r\n\r\n\"q\" \\\"\\\n100%x%%UUID%\nC:\\end \\\\\r\n*\n"
                      "%GameBase%;%InstanceDir%\n%UserName%\n%AccessToken%\n-a%authlib%\t");
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
        const QString failed = "Preparing FailedToStart", empty = "Preparing OtherError";
        const struct
        {
            Game::ArgsKey key;
            QString value, story;
            QStringList log;
        } rows[] = {
            {Game::ArgJavaPath, "no java", failed, {}},
            {Game::ArgGameBase, "no base", failed, {"open bat file to read failed!"}},
            {Game::ArgSession, {}, empty, {"session could not been empty!!!"}},
            {Game::ArgAccessToken, {}, empty, {"access token could not been empty!!!"}},
            {Game::ArgUUID, {}, empty, {"uuid could not been empty!!!"}},
            {Game::ArgUserName, {}, empty, {"user name could not been empty!!!"}},
            {Game::ArgInstanceDir, {}, empty, {"game instance path could not been empty!!!"}},
            {Game::ArgGameBase, {}, empty, {"game base path could not been empty!!!"}},
            {Game::ArgJavaPath, {}, empty, {"javaw.exe path could not been empty!!!"}},
        };
        GameRun<> run;
        for (const auto &row : rows) {
            const LogCapture log;
            run.game->setArgs(row.key, row.value);
            run.states.clear();
            run.game->start();
            STORY(run, row.story);
            QCOMPARE(log.lines(), row.log);
        }
        const LogCapture log;
        run.game->setArgs(Game::ArgsKey(10), "x");
        QCOMPARE(run.game->getArgsValue(Game::ArgsKey(10)), QString());
        QVERIFY(log.lines().count("the arg key 10 have not been registed.") == 2);
    }

    void outputOfTwoRunsIsKept()
    {
        GameRun<> run("until %dir/go|flood|args|crash", "%UserName%");
        for (const QString name : {"1", "2", "3"}) {
            run.game->setArgs(Game::ArgUserName, name);
            run.states.clear();
            QFile::remove(run.dir.filePath("go"));
            run.game->start();
            STORY(run, "Preparing Initializing Running Crashed Exited");
        }
        QCOMPARE(run.output().size(), 4 * 1024 * 1024 + 4);
        QVERIFY(run.output().endsWith(".\n[3]\n"));
        QVERIFY(run.output("game-output.previous.log").endsWith(".\n[2]\n"));
    }

    void aGameWithoutItsDirectoryStillRuns()
    {
        GameRun<> run("args");
        run.write(run.instance, "a file");
        run.system->comesUp = false;
        const LogCapture log;
        run.game->start();
        STORY(run, "Preparing Initializing Exited");
        QVERIFY(log.lines().filter("could not be").size() == 4);
    }

    void endsAndAbortsAtEveryMoment()
    {
        const QString go = "until %dir/go", never = "until %dir/never";
        const QString brief = "Preparing Initializing Exited";
        const QString full = "Preparing Initializing Running Exited";
        const QString crashed = "Preparing Initializing Running Crashed Exited";
        const struct
        {
            int abortAt;
            bool comesUp, canEnd;
            QString steps, story;
        } rows[] = {
            {Game::StatePreparing, true, true, go, full},
            {Game::StateExited, true, true, go, full},
            {Game::StateCrashed, true, true, go + "|exit 3", crashed},
            {Game::StateCrashed, true, true, go + "|crash", crashed},
            {-1, true, true, never, brief},
            {Game::StateInitializing, true, true, never, brief},
            {Game::StateInitializing, false, true, never, brief},
            {Game::StateRunning, true, true, never, full},
            {Game::StateRunning, true, false, never, full},
        };
        for (const auto &row : rows) {
            const LogCapture log;
            GameRun<> run(row.steps);
            run.system->comesUp = row.comesUp;
            run.system->canEnd = row.canEnd;
            QVERIFY(!run.game->abort());
            bool aborted = false;
            run.onState = [&](int state) {
                if (state == row.abortAt)
                    aborted = run.game->abort();
            };
            run.game->start();
            if (row.abortAt < 0)
                aborted = run.game->abort();
            STORY(run, row.story);
            QVERIFY(!run.game->abort());
            run.system->comesUp = true;
            QTRY_VERIFY(run.game->children().isEmpty());
            QCOMPARE(run.story(), row.story);
            QCOMPARE(aborted, row.steps == never);
            QCOMPARE(log.has(QtCriticalMsg, "open minecraft process failed with error 5"),
                     !row.canEnd);
        }
    }

    void deletedAtEveryMoment()
    {
        for (int state = Game::StatePreparing; state <= Game::StateCrashed; ++state) {
            GameRun<> run("until %dir/go|crash");
            if (state == Game::StateFailedToStart)
                run.game->setArgs(Game::ArgJavaPath, "no java");
            run.onState = [&](int now) {
                if (now == state)
                    run.game.reset();
            };
            run.game->start();
            QTRY_VERIFY(!run.game);
        }
        GameRun<> run;
        run.system->comesUp = false;
        run.game->start();
        STORY(run, "Preparing Initializing");
        run.game.reset();
    }

    void theWindowGetsItsTitle()
    {
        GameRun<> run("until %dir/show|window|until %dir/go");
        run.system.reset();
        run.game->setMCWindowTitle("Oriel 我");
        run.game->start();
        STORY(run, "Preparing Initializing");
        run.write("show");
        STORY(run, "Preparing Initializing Running Exited");
        QCOMPARE(run.output(), "Oriel 我\n");
    }
};

QTEST_GUILESS_MAIN(tst_LaunchMcProcess)
#include "tst_LaunchMcProcess.moc"
