#include "core/accounts/RivetUserProfile.h"
#include "core/launch/OrAuthServerInstanceInfo.h"
#include "core/launch/ReadyForGameClientLaunchLAN.h"
#include "support/coresupport/DirectoryNames.h"
#include "tests/support/GameRun.h"
#include "tests/support/ServiceWorld.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestInstance.h"

namespace {

/// One launch of the scripted game, for the account 7.
struct Launch : ServiceWorld
{
    explicit Launch(const QString &gameSteps = "")
    {
        const QString base = path(g_deploypath_game_name);
        makeFiles(base, {"/.minecraft/versions/oriel7/7.bat=-x\n%UserName%\n%UUID%\n%Session%\n"});
        const QByteArray answer =
            R"({"code":"1","ortoken":"t","oruser_profile":{"login":"Bob","user":{"bid":"7"}}})";
        profile.setCurrentProfile(QJsonDocument::fromJson(answer).object());
        auto *settings = Environment::GetInstance()->settings().get();
        settings->setValue("JavaPath", QStandardPaths::findExecutable("scripted-game"));
        settings->setValue("JavaParam", "-a  -b");
        info->session.SetCurrentOrBid(7);
        info->session.SetAccessToken("access");
        info->session.SetPlayerName("Steve");
        info->session.SetUUID("uuid");
        info->session.SetSession("session");
        info->sid = "sid";
        info->host = "10.0.0.1";
        info->port = 25566;
        qputenv("GAME_STEPS", QString(gameSteps).replace("%dir", folder.path()).toUtf8());
    }
    /// The story of the launch up to the end of the game, if there is one.
    QString play()
    {
        step = std::make_unique<ReadyForGameClientLaunchLAN>(info, instance, nullptr, nullptr);
        journal = std::make_unique<TaskJournal>(*step);
        step->SetRivetUserProfile(hasProfile ? &profile : nullptr);
        step->SetMCSettings(hasSettings ? Environment::GetInstance()->settings().get() : nullptr);
        step->SetLANExternData(roomOwner, isRoomOwner);
        QObject::connect(step.get(), &GameLaunchBase::error, journal.get(),
                         [this](int e) { journal->lines << QString("error %1").arg(e); });
        QObject::connect(step.get(), &ReadyForGameClientLaunch::gameProcessFinished, journal.get(),
                         [this] { journal->lines << "gone"; });
        const auto perhapsDelete = [this] {
            if (journal->lines.last() == deletedAt)
                step.reset();
        };
        QObject::connect(step.get(), &GameLaunchBase::error, journal.get(), perhapsDelete);
        QObject::connect(step.get(), &TaskAbstract::progress, journal.get(), perhapsDelete);
        step->start();
        const bool isOver = await([this] {
            if (!step)
                return true;
            if (step->isFinished() && step->successful() && onRunning)
                std::exchange(onRunning, nullptr)();
            const QStringList &lines = journal->lines;
            return lines.contains("gone") ||
                   (step->isFinished() && !step->successful() && !lines.contains("95/100"));
        });
        return isOver ? journal->lines.mid(2).join(", ") : "does not end";
    }
    QByteArray output() const
    {
        return FS::readFile(instance->dir + "/game-output.log").value_or("").replace("\r", "");
    }

    WindowlessSystem system;
    RivetUserProfile &profile = *RivetUserProfile::GetInstance();
    std::shared_ptr<TestInstance> instance = std::make_shared<TestInstance>(path("inst"), "7");
    std::shared_ptr<OrAuthServerInstanceInfo> info = std::make_shared<OrAuthServerInstanceInfo>();
    bool hasProfile = true, hasSettings = true, isRoomOwner = false;
    QString roomOwner, deletedAt;
    std::function<void()> onRunning;
    std::unique_ptr<ReadyForGameClientLaunchLAN> step;
    std::unique_ptr<TaskJournal> journal;
};

} // namespace

class tst_GameClientLaunch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tellsEachStateOfTheGame()
    {
        struct Row
        {
            const char *name;
            QString story, gameSteps = "until %dir/go";
            std::function<void(Launch &)> arrange = [](Launch &) {};
        };
        const auto go = [](Launch &l) { l.onRunning = [&l] { makeFiles(l.path(""), {"go"}); }; };
        const QString up = "status trying to start the game, 40/100, 95/100, status game client "
                           "initialize..., 100/100, finished 1 , ";
        const QString tried = "status trying to start the game, 40/100, ";
        const QString tampered = "minecraft start failed, because some files are tampered, please "
                                 "restart minecraft.";
        const auto failure = [](int error, const QString &text) {
            return QString("error %1, failed %2, finished 0 %2").arg(error).arg(text);
        };
        const Row rows[] = {
            {"a usual run", up + "gone", "until %dir/go", go},
            {"a crash", up + "error 7, failed Game crashed., gone", "until %dir/go|exit 3", go},
            {"stopped", up + "gone", "until %dir/never",
             [](Launch &l) { l.onRunning = [&l] { QVERIFY(l.step->stopGame()); }; }},
            {"no abort", up + "gone", "until %dir/go",
             [](Launch &l) {
                 l.onRunning = [&l] {
                     QVERIFY(!l.step->canAbort() && !l.step->abort());
                     makeFiles(l.path(""), {"go"});
                 };
             }},
            {"tampered", up + "error 13, failed " + tampered + ", gone", "until %dir/never",
             [](Launch &l) {
                 makeFiles(l.instance->dir, {"mods/a.jar"});
                 l.onRunning = [&l] { makeFiles(l.instance->dir, {"mods/a.jar=changed"}); };
             }},
            {"over before it came up",
             tried + "95/100, status game client initialize..., 100/100, finished 1 , gone", "",
             [](Launch &l) { l.system.comesUp = false; }},
            {"no template", tried + failure(6, "The process failed to start."), "",
             [](Launch &l) { QVERIFY(QDir(l.path(g_deploypath_game_name)).removeRecursively()); }},
            {"no player", tried + failure(8, "The process failed to start with other error."), "",
             [](Launch &l) { l.info->session.SetUUID(""); }},
            {"another's session", failure(14, "need login"), "",
             [](Launch &l) { l.info->session.SetCurrentOrBid(8); }},
            {"no settings",
             "failed rivet settings  have not been set, finished 0 rivet settings  "
             "have not been set",
             "", [](Launch &l) { l.hasSettings = false; }},
            {"no profile",
             "failed rivet user profile have not been set, finished 0 rivet user "
             "profile have not been set",
             "", [](Launch &l) { l.hasProfile = false; }},
            {"no instance",
             "failed game instance temp object is null, finished 0 game instance "
             "temp object is null",
             "", [](Launch &l) { l.instance.reset(); }},
        };
        for (const Row &row : rows) {
            Launch launch(row.gameSteps);
            row.arrange(launch);
            const LogCapture log;
            const QString story = launch.play();
            QVERIFY2(story == row.story, qPrintable(QString("%1: %2").arg(row.name, story)));
        }
    }

    void aListenerMayDeleteIt()
    {
        for (const char *line : {"95/100", "100/100", "error 8"}) {
            Launch launch("until %dir/never");
            launch.deletedAt = line;
            if (launch.deletedAt.startsWith("error"))
                launch.info->session.SetUUID("");
            const LogCapture log;
            QVERIFY2(launch.play().endsWith(line) && !launch.step, line);
        }
    }

    void theGameGetsWhatItNeeds()
    {
        struct Row
        {
            QString room;
            bool isOwner;
            QString host, output;
        };
        const QString args = "[-a]\n[-b]\n[-x]\n[Steve]\n[uuid]\n[session]\n";
        const Row rows[] = {
            {"10.0.0.2", false, "10.0.0.1",
             args + "[--server]\n[10.0.0.1]\n[--port]\n[25566]\nsid 7 10.0.0.2 0\n"},
            {"", true, "", args + "[--port]\n[25566]\nsid 7  1\n"},
            {"", false, "h", args + "[--server]\n[h]\n[--port]\n[25566]\nsid 7 - -\n"},
        };
        for (const Row &row : rows) {
            Launch launch("args|env SID UUID room_game_server_addr room_o_flag");
            launch.info->host = row.host;
            launch.roomOwner = row.room;
            launch.isRoomOwner = row.isOwner;
            const LogCapture log;
            QVERIFY(launch.play().endsWith("gone"));
            QCOMPARE(QString(launch.output()), row.output);
            QCOMPARE(log.has(QtWarningMsg, "host or port is invalid"), row.host.isEmpty());
        }
    }
};

RIVET_SANDBOXED_TEST_MAIN(tst_GameClientLaunch)
#include "tst_GameClientLaunch.moc"
