#include <QtTest>

#include "core/launch/LaunchMcProcess.h"
#include "platform/OtherProcesses.h"
#include "tests/support/GameRun.h"
#include "tests/support/LogCapture.h"

namespace {

using Game = LaunchMcProcess;

/// A system without windows; where told so, the game never counts as up, or can't be ended.
class Processes final : public platform::OtherProcesses
{
public:
    Processes() { replace(this); }
    ~Processes() override { replace(nullptr); }
    std::optional<quint32> end(qint64 id) const override
    {
        return endable ? real.end(id) : std::optional<quint32>(5);
    }
    InputWait waitForInput(qint64) const override
    {
        while (!comesUp && !QThread::currentThread()->isInterruptionRequested())
            QThread::msleep(1);
        return InputWait::Ready;
    }
    bool setWindowTitle(qint64, const QString &) const override { return false; }

    std::atomic_bool endable{true}, comesUp{true};

private:
    const OtherProcesses &real = current();
};

} // namespace

#define STORY(run, text) QTRY_COMPARE_WITH_TIMEOUT((run).story(), QStringLiteral(text), 10000)

class tst_LaunchMcProcess : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_processes = std::make_unique<Processes>(); }
    void cleanup() { m_processes.reset(); }

    void argumentsArriveAsTheTemplateSays()
    {
        GameRun<> run(QStringLiteral("args|until %dir/go"),
                      "two  blanks\r\n\r\n\"q\" \\\"\\\n100%x%%UUID%\nC:\\end \\\\\r\n*\n"
                      "%GameBase%;%InstanceDir%\n%UserName%\n%AccessToken%\n-a%authlib%\t",
                      QStringLiteral("我 a's%1"));
        run.game->setArgs(Game::ArgJavaParam, QStringLiteral("  -Xmx1G   -D=\\ "));
        run.game->setArgs(Game::ArgUserName, QStringLiteral("first"));
        run.game->setArgs(Game::ArgUserName, QStringLiteral("玩é?"));
        run.game->setArgs(Game::ArgServer, QStringLiteral("h"));
        run.game->setArgs(Game::ArgPort, QStringLiteral("25565"));
        run.game->setProcessWorkingDir(run.instance);
        run.game->start();
        STORY(run, "Preparing Initializing Running Exited");
        QCOMPARE(run.output(),
                 "[-Xmx1G]\n[-D=\\]\n[two  blanks]\n[]\n[\"q\" \\\"\\]\n[100%x%${auth_uuid}]\n"
                 "[C:\\end \\\\]\n[*]\n[" +
                     (run.dir.path() + QLatin1Char(';') + run.instance).toUtf8() +
                     "]\n[?\xef\xbf\xbd?]\n[${auth_access_token}]\n[-a-oriel\t]\n[--server]\n[h]\n"
                     "[--port]\n[25565]\n");
    }

    void whatIsMissingIsLogged()
    {
        const struct
        {
            int key;
            const char *message;
        } rows[] = {
            {Game::ArgJavaPath, "javaw.exe path could not been empty!!!"},
            {Game::ArgGameBase, "game base path could not been empty!!!"},
            {Game::ArgInstanceDir, "game instance path could not been empty!!!"},
            {Game::ArgUserName, "user name could not been empty!!!"},
            {Game::ArgUUID, "uuid could not been empty!!!"},
            {Game::ArgAccessToken, "access token could not been empty!!!"},
            {Game::ArgSession, "session could not been empty!!!"},
            {10, "the arg key 10 have not been registed."},
        };
        GameRun<> run;
        for (int i = 7; i >= 0; --i) {
            const LogCapture log;
            run.game->setArgs(Game::ArgsKey(rows[i].key), {});
            run.states.clear();
            if (i < 7)
                run.game->start();
            QCOMPARE(run.story(), QLatin1String(i < 7 ? "Preparing OtherError" : ""));
            QCOMPARE(log.lines(), QStringList(QLatin1String(rows[i].message)));
        }
    }

    void theEndIsTold()
    {
        const struct
        {
            const char *steps, *story;
        } rows[] = {
            {"until %dir/go", "Preparing Initializing Running Exited"},
            {"until %dir/go|exit 3", "Preparing Initializing Running Crashed Exited"},
            {"until %dir/go|print last words|crash",
             "Preparing Initializing Running Crashed Exited"},
            {"child %dir/later|until %dir/go", "Preparing Initializing Running Exited"},
            {nullptr, "Preparing FailedToStart"},
        };
        for (const auto &row : rows) {
            GameRun<> run(QLatin1String(row.steps));
            if (!row.steps)
                run.game->setArgs(Game::ArgJavaPath, run.file(QStringLiteral("no java")));
            run.game->start();
            QTRY_COMPARE_WITH_TIMEOUT(run.story(), QLatin1String(row.story), 10000);
            QVERIFY(!run.game->abort());
            QVERIFY(!QByteArray(row.steps).contains("last") || run.output() == "last words\n");
            run.touch(QStringLiteral("later"));
        }
        const LogCapture log;
        GameRun<> run;
        run.game->setArgs(Game::ArgGameBase, run.instance);
        run.game->start();
        STORY(run, "Preparing FailedToStart");
        QVERIFY(log.has(QtCriticalMsg, QStringLiteral("open bat file to read failed!")));
    }

    void outputOfTwoRunsIsKept()
    {
        GameRun<> run(QStringLiteral("until %dir/go|flood 4|print end|crash"));
        for (int i = 0; i < 3; ++i) {
            run.states.clear();
            run.game->start();
            STORY(run, "Preparing Initializing Running Crashed Exited");
        }
        QCOMPARE(run.output().size(), 4 * 1024 * 1024 + 4);
        QVERIFY(run.output().endsWith(".\nend\n"));
        QCOMPARE(run.output(QStringLiteral("game-output.previous.log")), run.output());
    }

    void aGameWithoutItsDirectoryStillRuns()
    {
        GameRun<> run(QStringLiteral("flood 1"));
        QVERIFY(FS::writeFile(run.instance, "a file"));
        m_processes->comesUp = false;
        const LogCapture log;
        run.game->start();
        STORY(run, "Preparing Initializing Exited");
        QVERIFY(log.lines().filter(QStringLiteral("could not be")).size() == 4);
    }

    void abortedAtEveryMoment()
    {
        const struct
        {
            int at;
            bool comesUp, endable, aborted;
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
            m_processes->comesUp = row.comesUp;
            m_processes->endable = row.endable;
            GameRun<> run(
                QStringLiteral("until %dir/%1").arg(QLatin1String(row.aborted ? "never" : "go")));
            QVERIFY(!run.game->abort());
            bool aborted = false;
            run.onState = [&](int state) {
                if (state == row.at)
                    aborted = run.game->abort();
            };
            run.game->start();
            if (row.at < 0)
                aborted = run.game->abort();
            QTRY_COMPARE_WITH_TIMEOUT(run.story(), QLatin1String(row.story), 10000);
            m_processes->comesUp = true;
            QTRY_VERIFY(run.game->children().isEmpty());
            QCOMPARE(run.story(), QLatin1String(row.story));
            QCOMPARE(aborted, row.aborted);
            QCOMPARE(log.has(QtCriticalMsg,
                             QStringLiteral("open minecraft process failed with error 5")),
                     !row.endable);
        }
    }

    void deletedAtEveryMoment()
    {
        for (int state = Game::StatePreparing; state <= Game::StateCrashed; ++state) {
            GameRun<> run(QStringLiteral("until %dir/go|crash"));
            if (state == Game::StateFailedToStart)
                run.game->setArgs(Game::ArgJavaPath, run.file(QStringLiteral("no java")));
            run.onState = [&](int now) {
                if (now == state)
                    run.game.reset();
            };
            run.game->start();
            QTRY_VERIFY(!run.game);
        }
        m_processes->comesUp = false;
        GameRun<> run;
        run.game->start();
        STORY(run, "Preparing Initializing");
        run.game.reset();
    }

    void theWindowGetsItsTitle()
    {
        m_processes.reset();
        const QString title = QStringLiteral("Oriel 我");
        GameRun<> run(QStringLiteral("until %dir/show|window|title|until %dir/go"));
        run.game->setMCWindowTitle(title);
        run.game->start();
        STORY(run, "Preparing Initializing");
        run.touch(QStringLiteral("show"));
        STORY(run, "Preparing Initializing Running Exited");
        QCOMPARE(run.output(), "opened\n" + title.toUtf8() + '\n');
    }

private:
    std::unique_ptr<Processes> m_processes;
};

QTEST_GUILESS_MAIN(tst_LaunchMcProcess)
#include "tst_LaunchMcProcess.moc"
