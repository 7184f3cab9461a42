#include <QTcpServer>
#include <QTcpSocket>
#include <QtConcurrent>
#include <QtTest>

#include "core/servers/GetServerPlayerInfo.h"
#include "tests/support/Await.h"

namespace {

/// How a server answers: at once, one byte after the other ("trickle"), late, followed by a close
/// ("cut"), or with the last byte for ever ("endless").
struct Row
{
    QByteArray how, bytes;
    uint waitMs;
    QString expected; ///< the return value, "code", "max", "online" and, if it is late, "lag"
};

void say(QTcpSocket *socket, const QByteArray &bytes, const QByteArray &how)
{
    if (socket->bytesToWrite() < 1'000'000)
        socket->write(how == "trickle" ? bytes.left(1) : bytes);
    const QByteArray rest = how == "trickle" ? bytes.mid(1) : bytes.right(1).repeated(65536);
    if (how == "trickle" || how == "endless")
        QTimer::singleShot(2, socket, [=] { say(socket, rest, how); });
    if (how == "cut")
        socket->disconnectFromHost();
}

/// Answers one question, if it is right.
void answer(QTcpServer &server, const Row &row)
{
    QTcpSocket *socket = server.nextPendingConnection();
    const QByteArray question = QByteArray("\x0f\0\0\x09localhost", 13) +
                                char(server.serverPort()) + char(server.serverPort() >> 8) +
                                QByteArray("\1\1\0", 3);
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QTcpSocket::readyRead, socket, [=] {
        if (socket->peek(99) == question)
            QTimer::singleShot(row.how == "late" ? 310 : 0, socket,
                               [=] { say(socket, row.bytes, row.how); });
    });
}

} // namespace

class tst_GetServerPlayerInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsWhatServersSay()
    {
        const auto hex = [](const char *header) { return QByteArray::fromHex(header); };
        constexpr uint brief = 200, minute = 60'000; // a minute is longer than the test waits
        const QByteArray text = R"({"players":{"max":20,"online":5}})", flood(5 << 20, '['),
                         whole = hex("230021") + text;
        QList<Row> rows{{"cut", whole + "}", minute, "1 0 20 5 "},
                        {"late", whole, minute, "1 0 20 5 3"},
                        {"trickle", hex("a38080808000") + "\x18{\"players\":{\"online\":7}}",
                         minute, "1 0 -1 7 "},
                        {"", hex("00000e") + R"({"players":{}})", minute, "1 2   "},
                        {"", "", 0, "0 2   "},
                        {"", "", brief, "0 2   "},
                        {"", hex("000022") + text, brief, "1 2   "},
                        {"endless", hex("000080808080085b"), minute, "1 2   "},
                        {"endless", hex("0000ffffffff0f5b"), minute, "1 2   "},
                        {"endless", hex("ff"), minute, "1 2   "},
                        {"endless", hex("80"), minute, "1 2   "},
                        {"", hex("00008080c002") + flood, minute, "1 2   "},
                        {"", hex("0000808040") + flood, minute, "1 2   "},
                        {"trickle", hex("0000ff7f") + flood.left(16'383), brief, "1 2   "}};
        for (int bytes = 0; bytes < whole.size(); ++bytes)
            rows << Row{"cut", whole.left(bytes), minute, bytes == 0 ? "0 2   " : "1 2   "};

        std::vector<QTcpServer> servers(rows.size());
        QVector<int> numbers(500);
        for (int i = 0; i < numbers.size(); ++i)
            numbers[i] = i % rows.size();
        for (int i = 0; i < rows.size(); ++i) {
            QVERIFY(servers[i].listen(QHostAddress::LocalHost));
            connect(&servers[i], &QTcpServer::newConnection, this,
                    [&, i] { answer(servers[i], rows[i]); });
        }
        const std::function<QString(const int &)> ask = [&](int i) {
            QVariantMap result;
            const bool isAnswered = GetServerPlayerInfo().requestPlayerInfo(
                result, "localhost", servers[i].serverPort(), rows[i].waitMs);
            const QString lag = rows[i].how == "late" ? result["lag"].toString() : "";
            return QStringList{QString::number(isAnswered), result["code"].toString(),
                               result["max"].toString(), result["online"].toString(), lag}
                .join(' ');
        };
        QThreadPool::globalInstance()->setMaxThreadCount(32);
        QFutureWatcher<QString> watcher;
        watcher.setFuture(QtConcurrent::mapped(numbers, ask));
        QVERIFY(await([&] { return watcher.isFinished(); }));
        for (int i = 0; i < numbers.size(); ++i)
            QCOMPARE(watcher.resultAt(i), rows[numbers[i]].expected);
    }
};

QTEST_GUILESS_MAIN(tst_GetServerPlayerInfo)
#include "tst_GetServerPlayerInfo.moc"
