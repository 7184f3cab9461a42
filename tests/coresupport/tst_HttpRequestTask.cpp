#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QThread>
#include <QtTest>

#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/IHttpRequestSink.h"
#include "support/coresupport/IHttpRequestSinkEx.h"
#include "tests/support/Await.h"
#include "tests/support/TestServer.h"

namespace {

constexpr int timeoutMs = 400;
const QByteArray body(300'000, 'b');

/// Writes down the reports of one request, and deletes the task in the first.
struct Sink final : IHttpRequestSink, IHttpRequestSinkEx
{
    void httpRequestFinished(unsigned short id, QNetworkReply *reply) override
    {
        task.reset();
        note(id, reply->error(), reply->readAll());
    }
    void httpRequestFinishedEx(unsigned short id, int error, const QByteArray &data) override
    {
        const QByteArray copy = data;
        task.reset();
        note(id, error, copy);
    }
    void note(unsigned short id, int error, const QByteArray &data)
    {
        if (QThread::currentThread() == qApp->thread() && id == 7)
            reports << qMakePair(error, data);
    }
    std::unique_ptr<HttpRequestTask> task;
    QList<QPair<int, QByteArray>> reports;
};

} // namespace

class tst_HttpRequestTask : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void reportsOnce_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("error");
        const auto row = [](const char *name, const char *path, int error) {
            QTest::newRow(name) << QString::fromLatin1(path) << error;
        };
        using R = QNetworkReply;
        row("whole", "/whole", R::NoError);
        row("redirected", "/moved", R::NoError);
        row("time-out before the head", "/stall", R::TimeoutError);
        row("time-out of a slow body", "/trickle", R::TimeoutError);
        row("not found", "/none", R::ContentNotFoundError);
        row("body cut off", "/cut", R::RemoteHostClosedError);
        row("body cut off at once", "/cutAtOnce", R::RemoteHostClosedError);
        row("body shorter than it claims", "/claim", R::RemoteHostClosedError);
        row("packed body cut off", "/packed", R::RemoteHostClosedError);
        row("redirected to another scheme", "/odd", R::ProtocolUnknownError);
        row("refused", "refused", R::ConnectionRefusedError);
        row("invalid URL", "http://[", R::HostNotFoundError);
        row("no manager", "", R::UnknownNetworkError);
    }
    void reportsOnce()
    {
        QFETCH(QString, path);
        QFETCH(int, error);
        TestServer server, gone;
        server.at(QStringLiteral("/whole")).serve(body);
        server.at(QStringLiteral("/moved")).redirect(QUrl(QStringLiteral("/whole")));
        server.at(QStringLiteral("/odd")).redirect(QUrl(QStringLiteral("file:///etc/hostname")));
        server.at(QStringLiteral("/stall")).stall();
        server.at(QStringLiteral("/trickle")).serve(body).trickle(1, 20);
        server.at(QStringLiteral("/cut")).serve(body).cutAfter(200'000);
        server.at(QStringLiteral("/cutAtOnce")).serve(body).cutAfter(200'000).atOnce();
        server.at(QStringLiteral("/claim")).serve(body).lengthClaim(400'000).cutAfter(300'000);
        server.at(QStringLiteral("/packed"))
            .serve(QByteArray::fromHex("1f8b0800000000000003") + body)
            .header("Content-Encoding", "gzip")
            .cutAfter(200);
        if (path == QLatin1String("refused"))
            path = gone.url(QString()).toString();
        else if (path.startsWith(QLatin1Char('/')))
            path = server.url(path).toString();
        gone.close();

        for (const bool usesEx : {false, true}) {
            Sink sink;
            sink.task = std::make_unique<HttpRequestTask>(path, &sink, timeoutMs, 7, nullptr);
            if (usesEx)
                sink.task->SetSink(&sink);
            if (!path.isEmpty())
                sink.task->SetNetworkAccessManager(std::make_shared<QNetworkAccessManager>());
            sink.task->Start();
            QVERIFY2(sink.reports.isEmpty(), "never from within Start()");
            QVERIFY(await([&] { return !sink.reports.isEmpty(); }));
            QTest::qWait(1);
            QCOMPARE(sink.reports.size(), 1);
            QCOMPARE(sink.reports.first().first, error);
            if (usesEx || error == 0)
                QVERIFY(sink.reports.first().second == (error == 0 ? body : QByteArray()));
        }
    }

    void destroyedInFlightReportsNothing()
    {
        TestServer server;
        server.at(QStringLiteral("/file")).serve(body);
        const auto manager = std::make_shared<QNetworkAccessManager>();
        for (const bool hasArrived : {false, true}) {
            Sink sink;
            sink.task = std::make_unique<HttpRequestTask>(
                server.url(QStringLiteral("/file")).toString(), &sink, timeoutMs, 7, nullptr);
            sink.task->SetNetworkAccessManager(manager);
            sink.task->Start();
            auto *reply = manager->findChild<QNetworkReply *>();
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
