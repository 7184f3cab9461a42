#include <QTcpServer>
#include <QTcpSocket>
#include <QtConcurrent>
#include <QtTest>

#include "core/servers/GetServerPlayerInfo.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"

namespace {

/// Answers each status request with the same bytes: at once, one by one ("trickle"), late, followed
/// by a close ("cut"), or with the last one for ever ("endless").
class GameServer : public QTcpServer
{
public:
    GameServer(const QByteArray &bytes, const QByteArray &how)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [=] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, this, [=] {
                asked += socket->readAll();
                const int pauseMs = how == "late" ? 310 : 0;
                if (asked.size() % 18 == 0)
                    QTimer::singleShot(pauseMs, socket, [=] { say(*socket, bytes, how); });
            });
        });
    }
    static void say(QTcpSocket &socket, const QByteArray &bytes, const QByteArray &how)
    {
        const bool isSlow = how == "trickle", isEndless = how == "endless";
        if (socket.bytesToWrite() < 1'000'000)
            socket.write(isSlow ? bytes.left(1) : bytes);
        const QByteArray rest = isSlow ? bytes.mid(1) : bytes.right(1).repeated(65536);
        if (isSlow || isEndless)
            QTimer::singleShot(2, &socket, [=, &socket] { say(socket, rest, how); });
        if (how == "cut")
            socket.disconnectFromHost();
    }
    QByteArray asked;
};

} // namespace

class tst_GetServerPlayerInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsWhatServersSay()
    {
        constexpr uint brief = 200, minute = 60'000; // a minute is longer than the test waits
        const QByteArray text = R"({"players":{"max":20,"online":5}})", flood(5 << 20, '[');
        // How the server answers, with what header and text; the wait; code, max and online.
        LogCapture log;
        QList<std::tuple<QByteArray, QByteArray, QByteArray, uint, QString>> rows{
            {"cut", "230021", text + "}", minute, "1 0 20 5"},
            {"late", "230021", text, minute, "1 0 20 5 3"},
            {"trickle", "a380800000 9800", R"({"players":{"online":7}})", minute, "1 0 -1 7"},
            {"", "00001a", R"({"players":{"max":"many"}})", minute, "1 0 0 -1"},
            {"", "00000e", R"({"players":{}})", minute, "1 2"},
            {"", "", "", 0, "0 2"},
            {"", "", "", brief, "0 2"},
            {"", "000022", text, brief, "1 2"},
            {"endless", "00008080808008", "x", minute, "1 2"},
            {"endless", "0000ffffffff0f", "x", minute, "1 2"},
            {"endless", "ff", "", minute, "1 2"},
            {"endless", "80", "", minute, "1 2"},
            {"", "00008080c002", flood, minute, "1 2"},
            {"", "0000808040", flood, minute, "1 2"},
            {"trickle", "0000ff7f", flood.left(16'383), brief, "1 2"}};
        for (int bytes = 0; bytes < text.size() + 3; ++bytes)
            rows << std::make_tuple("cut", ("230021" + text.toHex()).left(2 * bytes), "", minute,
                                    bytes == 0 ? "0 2" : "1 2");
        QThreadPool pool;
        pool.setMaxThreadCount(32);
        std::vector<std::unique_ptr<GameServer>> servers;
        for (const auto &[how, header, body, waitMs, expected] : rows)
            servers.push_back(
                std::make_unique<GameServer>(QByteArray::fromHex(header) + body, how));
        int done = 0, fast = 0;
        QStringList wrong;
        for (int i = 0; i < 500; ++i) {
            const auto row = rows[i % rows.size()];
            const quint16 port = servers[i % rows.size()]->serverPort();
            QtConcurrent::run(&pool, [&, row, port, host = i % 3 ? "127.0.0.1" : "localhost"] {
                QVariantMap result;
                QString told = QString::number(GetServerPlayerInfo().requestPlayerInfo(
                    result, host, port, std::get<uint>(row)));
                for (const char *key : {"code", "max", "online"})
                    told += result.contains(key) ? " " + result[key].toString() : "";
                told += std::get<0>(row) == "late" ? " " + result["lag"].toString() : "";
                QMetaObject::invokeMethod(this, [&, row, told, lag = result["lag"]] {
                    ++done;
                    fast += lag == 1;
                    if (told != std::get<QString>(row))
                        wrong << std::get<0>(row) + " " + std::get<1>(row) + ": " + told;
                });
            });
        }
        QVERIFY(await([&] { return done == 500; }));
        QCOMPARE(wrong.join('\n'), "");
        QVERIFY(fast > 0);
        const uint port = servers[0]->serverPort(), swapped = (port & 255) << 8 | port >> 8;
        QCOMPARE(QString(servers[0]->asked.left(18).toHex()),
                 QString("0f0000096c6f63616c686f7374%1010100").arg(swapped, 4, 16, QChar('0')));
    }
};

QTEST_GUILESS_MAIN(tst_GetServerPlayerInfo)
#include "tst_GetServerPlayerInfo.moc"
