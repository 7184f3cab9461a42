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

const struct
{
    const char *name, *script; ///< or the URL
    R::NetworkError error;
} outcomes[] = {
    {"whole", "", R::NoError},
    {"redirected", "status=302 Location=/file then", R::NoError},
    {"time-out before the head", "mute", R::TimeoutError},
    {"time-out of a slow body", "trickle=1 pause=20", R::TimeoutError},
    {"not found", "status=404", R::ContentNotFoundError},
    {"body cut off", "cut=200000", R::RemoteHostClosedError},
    {"body cut off at once", "cut=200000 atOnce", R::RemoteHostClosedError},
    {"body shorter than it claims", "claim=400000 cut=300000", R::RemoteHostClosedError},
    {"packed body cut off", "Content-Encoding=gzip cut=200", R::RemoteHostClosedError},
    {"redirected to another scheme", "status=302 Location=file:///x", R::ProtocolUnknownError},
    {"refused", "gone", R::ConnectionRefusedError},
    {"invalid URL", "http://[", R::HostNotFoundError},
    {"no manager", "", R::UnknownNetworkError},
};

/// Takes the reports of one request down, and deletes the task in the first.
struct Sink final : IHttpRequestSink, IHttpRequestSinkEx
{
    explicit Sink(const QString &url, int timeoutMs)
        : task(std::make_unique<HttpRequestTask>(url, this, timeoutMs, 7, nullptr))
    {
        task->SetNetworkAccessManager(manager);
    }
    void httpRequestFinished(unsigned short id, QNetworkReply *reply) override
    {
        task.reset();
        reports << (id == 7 ? reply->error() : -1);
        data = reply->readAll();
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
        for (const auto &[name, script, error] : outcomes) {
            for (const bool usesEx : {false, true}) {
                TestServer server;
                server.play("/file", body, error == R::HostNotFoundError ? "" : script);
                Sink sink(error == R::HostNotFoundError ? script : server.url("/file").toString(),
                          error == R::TimeoutError ? 400 : 15'000);
                if (usesEx)
                    sink.task->SetSink(&sink);
                if (error == R::UnknownNetworkError)
                    sink.task->SetNetworkAccessManager(nullptr);
                sink.task->Start();
                QVERIFY2(sink.reports.isEmpty(), "never from within Start()");
                QVERIFY2(await([&] { return !sink.reports.isEmpty(); }), name);
                QTest::qWait(1);
                QVERIFY2(sink.reports == QList<int>{error}, name);
                if (usesEx || error == R::NoError)
                    QVERIFY2(sink.data == (error == R::NoError ? body : ""), name);
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
            QVERIFY(!sink.task);
            QCOMPARE(sink.reports.size(), 0);
        }
    }
};

QTEST_GUILESS_MAIN(tst_HttpRequestTask)
#include "tst_HttpRequestTask.moc"
