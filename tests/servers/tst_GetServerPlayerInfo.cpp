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
    std::shared_ptr<QTcpServer> server{};
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
void answer(const Row &row)
{
    QTcpSocket *socket = row.server->nextPendingConnection();
    const quint16 port = row.server->serverPort();
    const QByteArray question = QByteArray("\x0f\0\0\x09localhost", 13) + char(port) +
                                char(port >> 8) + QByteArray("\1\1\0", 3);
    const int pauseMs = row.how == "late" ? 310 : 0;
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QTcpSocket::readyRead, socket, [=] {
        if (socket->peek(99) == question)
            QTimer::singleShot(pauseMs, socket, [=] { say(socket, row.bytes, row.how); });
    });
}

QString ask(const Row &row)
{
    QVariantMap result;
    QString told = QString::number(GetServerPlayerInfo().requestPlayerInfo(
        result, "localhost", row.server->serverPort(), row.waitMs));
    for (const char *key : {"code", "max", "online", row.how == "late" ? "lag" : ""})
        told += " " + result[key].toString();
    return told;
}

} // namespace

class tst_GetServerPlayerInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsWhatServersSay()
    {
        const auto hex = [](const char *header) { return QByteArray::fromHex(header); };
        constexpr uint brief = 2000, minute = 60'000; // a minute is longer than the test waits
        const QByteArray text = R"({"players":{"max":20,"online":5}})", flood(5 << 20, '[');
        const QByteArray whole = hex("230021") + text;
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

        const int kinds = rows.size();
        while (rows.size() < 500)
            rows << Row(rows[rows.size() % kinds]);
        for (Row &row : rows) {
            row.server = std::make_shared<QTcpServer>();
            QVERIFY(row.server->listen(QHostAddress::LocalHost));
            connect(row.server.get(), &QTcpServer::newConnection, this, [&row] { answer(row); });
        }
        QThreadPool::globalInstance()->setMaxThreadCount(32);
        QTimer pulse; // under Wine the word of another thread may come without waking this one
        pulse.start(100);
        QFutureWatcher<QString> watcher;
        watcher.setFuture(QtConcurrent::mapped(rows, ask));
        QVERIFY(await([&] { return watcher.isFinished(); }));
        for (int i = 0; i < rows.size(); ++i)
            QVERIFY2(watcher.resultAt(i) == rows[i].expected,
                     rows[i].how + rows[i].bytes.left(40).toHex() + watcher.resultAt(i).toLatin1());
    }
};

QTEST_GUILESS_MAIN(tst_GetServerPlayerInfo)
#include "tst_GetServerPlayerInfo.moc"
