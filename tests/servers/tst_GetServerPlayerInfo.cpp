#include <QTcpServer>
#include <QTcpSocket>
#include <QtConcurrent>
#include <QtTest>

#include "core/servers/GetServerPlayerInfo.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"

namespace {

/// Answers each status request with the same bytes: at once, one by one ("trickle"), late, followed
/// by a close ("cut"), or by their last byte for ever ("endless").
class GameServer : public QTcpServer
{
public:
    GameServer(const QByteArray &bytes, const QByteArray &how)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, bytes, how] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, bytes, how] {
                if (socket->bytesAvailable() < 18)
                    return;
                asked = socket->readAll();
                QTimer::singleShot(how == "late" ? 310 : 0, socket, [=] {
                    how == "trickle" ? trickle(*socket, bytes) : answer(*socket, bytes, how);
                });
            });
        });
    }

    QByteArray asked;

private:
    static void answer(QTcpSocket &socket, const QByteArray &bytes, const QByteArray &how)
    {
        socket.write(bytes);
        if (how == "cut")
            socket.disconnectFromHost();
        if (how == "endless")
            connect(&socket, &QTcpSocket::bytesWritten, &socket,
                    [&socket, bytes] { socket.write(QByteArray(65536, bytes.back())); });
    }
    static void trickle(QTcpSocket &socket, const QByteArray &bytes)
    {
        socket.write(bytes.left(1));
        QTimer::singleShot(2, &socket, [&socket, bytes] { trickle(socket, bytes.mid(1)); });
    }
};

using Result = QMap<QString, QVariant>;

/// Asks from another thread: the servers live on this one.
QFuture<QString> ask(QThreadPool &pool, quint16 port, uint waitMs, const QString &host, Result *out)
{
    return QtConcurrent::run(&pool, [=] {
        Result result;
        const bool isAnswered = GetServerPlayerInfo().requestPlayerInfo(result, host, port, waitMs);
        QString text = QString("%1 %2").arg(isAnswered).arg(result["code"].toInt());
        for (const char *key : {"max", "online"})
            text += result.contains(key) ? " " + result[key].toString() : "";
        if (out)
            *out = result;
        return text;
    });
}

bool ends(const QFuture<QString> &future)
{
    QFutureWatcher<QString> watcher; // tells this thread's event loop
    watcher.setFuture(future);
    return await([&] { return watcher.isFinished(); });
}

} // namespace

class tst_GetServerPlayerInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsWhatServersSay()
    {
        constexpr uint brief = 200, minute = 60'000; // a minute is longer than the test waits
        const QByteArray text = R"({"players":{"max":20,"online":5}})";
        struct Row
        {
            QByteArray how, header, text;
            uint waitMs;
            QString expected;
        };
        QList<Row> rows{
            {"", "230021", text + "}", minute, "1 0 20 5"},
            {"cut", "230021", text, minute, "1 0 20 5"},
            {"late", "230021", text, minute, "1 0 20 5"},
            {"trickle", "a3808000 00 9800", R"({"players":{"online":7}})", minute, "1 0 -1 7"},
            {"", "0000 1a", R"({"players":{"max":"many"}})", minute, "1 0 0 -1"},
            {"", "0000 0e", R"({"players":{}})", minute, "1 2"},
            {"", "", "", brief, "0 2"},
            {"cut", "", "", minute, "0 2"},
            {"", "23", "", brief, "1 2"},
            {"", "0000 22", text, brief, "1 2"},
            {"", "0000 8000", text, minute, "1 2"},
            {"endless", "0000 8080808008", "x", minute, "1 2"},
            {"endless", "0000 ffffffff0f", "x", minute, "1 2"},
            {"endless", "ff", "", minute, "1 2"},
            {"endless", "80", "", minute, "1 2"},
            {"", "0000 8080c002", QByteArray(5 << 20, 'x'), minute, "1 2"},
            {"", "0000 808040", QByteArray(1 << 20, '['), minute, "1 2"},
            {"trickle", "0000 ff7f", QByteArray(16'383, ' '), brief, "1 2"},
            {"endless", "0000 22", "x", minute, "1 2"}};
        const QByteArray whole = QByteArray::fromHex("230021") + text;
        for (int bytes = 1; bytes < whole.size(); ++bytes)
            rows << Row{"cut", whole.left(bytes).toHex(), "", minute, "1 2"};

        QThreadPool pool;
        pool.setMaxThreadCount(32);
        std::vector<std::unique_ptr<GameServer>> servers;
        QList<QFuture<QString>> futures;
        for (const Row &row : rows)
            servers.push_back(
                std::make_unique<GameServer>(QByteArray::fromHex(row.header) + row.text, row.how));
        for (int i = 0; i < 500; ++i)
            futures << ask(pool, servers[i % rows.size()]->serverPort(),
                           rows[i % rows.size()].waitMs, i % 2 ? "localhost" : "127.0.0.1",
                           nullptr);
        for (int i = 0; i < 500; ++i) {
            const Row &row = rows[i % rows.size()];
            QVERIFY2(ends(futures[i]), row.header + ' ' + row.how);
            QVERIFY2(futures[i].result() == row.expected,
                     row.header + ' ' + row.how + qPrintable(": " + futures[i].result()));
        }
    }

    void tellsTheLagAndAsksAsTheGameDoes()
    {
        const QByteArray answer = QByteArray::fromHex("0000027b7d");
        QThreadPool pool;
        Result result;
        for (const char *how : {"", "late"}) {
            GameServer server(answer, how);
            const int lag = *how ? 3 : 1;
            for (int tries = 0; tries < 50 && result["lag"] != lag; ++tries) {
                const auto future = ask(pool, server.serverPort(), 9'000, "127.0.0.1", &result);
                QVERIFY(ends(future));
            }
            QCOMPARE(result["lag"].toInt(), lag);
            const quint16 port = server.serverPort();
            QCOMPARE(server.asked.toHex(), "0f0000093132372e302e302e31" +
                                               QByteArray(1, char(port)).toHex() +
                                               QByteArray(1, char(port >> 8)).toHex() + "010100");
        }
        LogCapture log;
        QVERIFY(!GetServerPlayerInfo().requestPlayerInfo(result, "127.0.0.1", 1, 0));
        QVERIFY(log.has(QtWarningMsg, "wait time can not be zero") && result["lag"] == 3);
        for (const char *host : {"127.0.0.1", "nowhere.invalid"})
            QVERIFY(!GetServerPlayerInfo().requestPlayerInfo(result, host, 1, 5'000));
    }
};

QTEST_GUILESS_MAIN(tst_GetServerPlayerInfo)
#include "tst_GetServerPlayerInfo.moc"
