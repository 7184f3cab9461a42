#include <QNetworkAccessManager>
#include <QtTest>

#include "core/accounts/OrMCAuthenticateTask.h"
#include "support/coresupport/HttpRequestTask.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestServer.h"

class tst_OrMCAuthenticateTask : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void endsAsTheAnswerSays()
    {
        struct Row
        {
            QByteArray answer;
            int status;
            QString story; // with the player's name behind it
            QByteArray script = {};
        };
        const QString unknown = "finished 0 unknown authenticate error ";
        const Row rows[] = {
            {R"({"code":1,"token":"t","pname":"p","uuid":"u"})", 2, "finished 1  t t p u legacy"},
            {R"( {"code":"1","token":"t","pname":"p","uuid":"u"})", 2,
             "finished 1  t t p u legacy"},
            {R"({"code":2})", 3, "finished 0 your account maybe login elsewhere     legacy"},
            {R"({"code":"3","token":"t"})", 4, "finished 1      legacy"},
            {R"({"code":5})", 5, "finished 0 product version needs to updated.     legacy"},
            {"", 6, "finished 0 can not connect to game server.     legacy", "status=500"},
            {R"({"code":0})", 1, unknown + "    legacy"},
            {R"({"code":"abc"})", 1, unknown + "    legacy"},
            {R"({"code":1.5})", 1, unknown + "    legacy"},
            {R"({"code":1,"token":"t","pname":"p"})", 1, unknown + "    legacy"},
            {R"({"code":1,"token":"t","pname":"p","uuid":""})", 1, unknown + "    legacy"},
            {R"({"code":1,"token":7,"pname":"p","uuid":"u"})", 1, unknown + "    legacy"},
            {"[1]", 1, unknown + "    legacy"},
            {"<html>", 1, unknown + "    legacy"},
        };
        for (const Row &row : rows) {
            TestServer server;
            server.play("/auth", row.answer, row.script);
            HttpRequestTask request(server.url("/auth").toString(), nullptr, 20'000, 0, nullptr);
            request.SetNetworkAccessManager(std::make_shared<QNetworkAccessManager>());
            OrMCAuthenticateTask task;
            task.SetHttpRequestTask(&request);
            TaskJournal journal(task);
            const LogCapture log;
            int statusAtEnd = -1;
            connect(&task, &TaskAbstract::finished, this,
                    [&] { statusAtEnd = task.GetAuthenticateStatus(); });
            task.start();
            QVERIFY(await([&] { return statusAtEnd >= 0; }));
            OrMCAuthSession s;
            s.SetUserType("other");
            task.FillAuthSession(s);
            const QStringList session{s.GetSession(), s.GetAccessToken(), s.GetPlayerName(),
                                      s.GetUUID(), s.GetUserType()};
            QVERIFY2(statusAtEnd == row.status, row.answer);
            QCOMPARE(journal.lines.last() + ' ' + session.join(' '), row.story);
            s.SetCurrentOrBid(7);
            QCOMPARE(s.IsSessionValid(7), row.status == 2);
            QVERIFY(!s.IsSessionValid(8) && !log.lines().join(' ').contains("\"t\""));
        }
    }

    void neitherSideMissesTheOther()
    {
        TestServer server;
        server.play("/auth", "{}", "");
        auto request = std::make_unique<HttpRequestTask>(server.url("/auth").toString(), nullptr,
                                                         20'000, 0, nullptr);
        request->SetNetworkAccessManager(std::make_shared<QNetworkAccessManager>());
        auto task = std::make_unique<OrMCAuthenticateTask>();
        const LogCapture log;
        task->start();
        QVERIFY(task->isRunning() && log.has(QtCriticalMsg, "http request task pointer null when "
                                                            "authenticate task run"));
        task->SetHttpRequestTask(request.get());
        task->start();
        task.reset(); // the request reports to nobody
        QVERIFY(await([&] { return server.requests().size() == 1; }));
        QTest::qWait(20);
        task = std::make_unique<OrMCAuthenticateTask>();
        task->SetHttpRequestTask(request.get());
        request.reset();
        task->start();
        QCOMPARE(log.lines().size(), 2);
    }
};

QTEST_GUILESS_MAIN(tst_OrMCAuthenticateTask)
#include "tst_OrMCAuthenticateTask.moc"
