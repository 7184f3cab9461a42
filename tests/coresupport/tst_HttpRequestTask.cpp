#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QtTest>

#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/IHttpRequestSink.h"
#include "support/coresupport/IHttpRequestSinkEx.h"
#include "tests/support/Await.h"
#include "tests/support/TestServer.h"

namespace {

using R = QNetworkReply;

/// Begins like a packed one.
const QByteArray body = QByteArray::fromHex("1f8b0800000000000003") + QByteArray(300'000, 'b');

/// Takes the reports of one request down, and deletes the task in the first.
struct Sink final : IHttpRequestSink, IHttpRequestSinkEx
{
    Sink(const QString &url, int timeoutMs)
        : task(std::make_unique<HttpRequestTask>(url, this, timeoutMs, 7, nullptr))
    {
        task->SetNetworkAccessManager(manager);
    }
    void httpRequestFinished(unsigned short id, QNetworkReply *reply) override
    {
        task.reset(); // the reply outlives it
        httpRequestFinishedEx(id, reply->error(), reply->readAll());
    }
    void httpRequestFinishedEx(unsigned short id, int error, const QByteArray &received) override
    {
        data = received;
        task.reset();
        reports << (id == 7 ? error : -1);
    }
    std::shared_ptr<QNetworkAccessManager> manager = std::make_shared<QNetworkAccessManager>();
    std::unique_ptr<HttpRequestTask> task;
    QList<int> reports;
    QByteArray data;
};

} // namespace

class tst_HttpRequestTask : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void reportsOnce()
    {
        // An error, and what the server does to bring it about.
        const QPair<R::NetworkError, QByteArray> rows[] = {
            {R::NoError, "|status=302 Location=/file then"},
            {R::TimeoutError, "mute|trickle=1 pause=20"},
            {R::ContentNotFoundError, "status=404"},
            {R::RemoteHostClosedError, "cut=200000|cut=200000 atOnce|claim=400000 cut=300000"},
            {R::RemoteHostClosedError, "Content-Encoding=gzip cut=200"},
            {R::ProtocolUnknownError, "status=302 Location=file:///x"},
            {R::ConnectionRefusedError, "gone"},
            {R::HostNotFoundError, ""},   // the URL is invalid
            {R::UnknownNetworkError, ""}, // there is no manager
        };
        for (const auto &[error, scripts] : rows) {
            for (const QByteArray &script : scripts.split('|')) {
                reportsOnce(error, script, false);
                reportsOnce(error, script, true);
            }
        }
    }

    void destroyedInFlightReportsNothing()
    {
        TestServer server;
        server.play("/file", body, "");
        for (const bool hasArrived : {false, true}) {
            Sink sink(server.url("/file").toString(), 15'000);
            sink.task->Start();
            auto *reply = sink.manager->findChild<QNetworkReply *>();
            QSignalSpy finished(reply, &QNetworkReply::finished), gone(reply, &QObject::destroyed);
            if (hasArrived) // but the report is still on its way
                connect(reply, &QNetworkReply::finished, reply, [&sink] { sink.task.reset(); });
            else
                sink.task.reset();
            QVERIFY(await([&] { return gone.size() == 1; }));
            QCOMPARE(finished.size(), 1);
            QVERIFY(!sink.task && sink.reports.isEmpty());
        }
    }

private:
    static void reportsOnce(R::NetworkError error, const QByteArray &script, bool usesEx)
    {
        TestServer server;
        server.play("/file", body, script);
        Sink sink(error == R::HostNotFoundError ? "http://[" : server.url("/file").toString(),
                  error == R::TimeoutError ? 400 : 15'000);
        if (usesEx)
            sink.task->SetSink(&sink);
        if (error == R::UnknownNetworkError)
            sink.task->SetNetworkAccessManager(nullptr);
        sink.task->Start();
        QVERIFY2(sink.reports.isEmpty(), "never from within Start()");
        QVERIFY2(await([&] { return !sink.reports.isEmpty(); }), script);
        QTest::qWait(1);
        QVERIFY2(sink.reports == QList<int>{error}, script);
        if (usesEx || error == R::NoError)
            QVERIFY2(sink.data == (error == R::NoError ? body : ""), script);
    }
};

QTEST_GUILESS_MAIN(tst_HttpRequestTask)
#include "tst_HttpRequestTask.moc"
