#include "tests/support/TestServer.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>

#include "support/jsonfskit/FS.h"

namespace {

/// Never more than this waits unsent, so that what counts as sent is on its way.
constexpr qint64 sendWindow = 64 * 1024;

QByteArray headerLine(const QByteArray &name, const QByteArray &value)
{
    return name + ": " + value + "\r\n";
}

} // namespace

/// One connection: reads requests and plays their answers, one after another.
class TestConnection : public QObject
{
public:
    TestConnection(TestServer &server, QSslSocket &socket)
        : QObject(&socket), m_server(server), m_socket(socket)
    {
        connect(&socket, &QIODevice::readyRead, this, [this] { read(); });
        connect(&socket, &QIODevice::bytesWritten, this, [this] { send(); });
        connect(&socket, &QSslSocket::encryptedBytesWritten, this, [this] { send(); });
        connect(&m_pause, &QTimer::timeout, this, [this] { sendPiece(number("trickle", 0)); });
    }

private:
    bool has(const char *word) const { return m_answer.words.contains(word); }
    QByteArray text(const char *word) const { return m_answer.words.value(word); }
    qint64 number(const char *word, qint64 otherwise) const
    {
        return has(word) ? text(word).toLongLong() : otherwise;
    }

    void read()
    {
        m_input += m_socket.readAll();
        const int end = m_input.indexOf("\r\n\r\n");
        if (m_isAnswering || end < 0)
            return;
        const QList<QByteArray> lines = m_input.left(end).replace('\r', "").split('\n');
        m_input.remove(0, end + 4);
        TestServer::Request request;
        request.path = lines.first().split(' ').value(1);
        for (const QByteArray &line : lines.mid(1)) {
            const int colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        m_isAnswering = true;
        m_answer = m_server.nextAnswer(request.path);
        m_index = m_server.m_requests.size();
        m_server.m_requests << request;
        later([this] { begin(); });
    }

    template <typename Step>
    void later(const Step &step)
    {
        QTimer::singleShot(has("atOnce") ? 0 : 5, Qt::PreciseTimer, this, step);
    }

    void begin()
    {
        if (has("mute"))
            return;
        m_next = 0;
        m_left = number("first", m_answer.body.size());
        QByteArray head;
        const int status = has("status") ? text("status").toInt() : deservedStatus(head);
        if (status / 100 != 2)
            m_left = 0;
        if (!has("noLength"))
            head += headerLine("Content-Length", QByteArray::number(number("claim", m_left)));
        m_left = qMin(m_left, qMin(number("cut", m_left), number("stall", m_left)));
        for (auto word = m_answer.words.cbegin(); word != m_answer.words.cend(); ++word) {
            if (isupper(word.key().at(0)) && !word.value().isEmpty())
                head += headerLine(word.key(), word.value());
        }
        m_socket.write("HTTP/1.1 " + QByteArray::number(status) + " Scripted\r\n" + head + "\r\n");
        if (has("trickle"))
            m_pause.start(int(number("pause", 1)));
        send();
    }

    int deservedStatus(QByteArray &head)
    {
        const auto asked = m_server.m_requests.at(m_index).headers;
        const auto isCurrent = [&](const char *condition) {
            const QByteArray tag = asked.value(condition);
            return !tag.isEmpty() && (tag == text("ETag") || tag == text("Last-Modified"));
        };
        if (isCurrent("if-none-match") || isCurrent("if-modified-since"))
            return 304;
        const QByteArray range = asked.value("range"); // "bytes=N-"
        if (range.isEmpty() || has("ignoreRange") ||
            (asked.contains("if-range") && !isCurrent("if-range")))
            return 200;
        m_next = range.mid(6, range.size() - 7).toLongLong();
        m_left -= m_next;
        if (m_left <= 0)
            return 416;
        const QByteArray size = QByteArray::number(m_next + m_left);
        const QByteArray last = QByteArray::number(m_next + m_left - 1);
        head = headerLine("Content-Range",
                          "bytes " + QByteArray::number(m_next) + '-' + last + '/' + size);
        return 206;
    }

    void send()
    {
        if (m_left < 0 || m_pause.isActive())
            return;
        if (m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite() < sendWindow)
            sendPiece(sendWindow);
    }

    void sendPiece(qint64 most)
    {
        const qint64 bytes = qMin(most, m_left);
        m_server.m_requests[m_index].bodySentBytes += bytes;
        m_socket.write(m_answer.body.constData() + m_next, bytes);
        m_next += bytes;
        m_left -= bytes;
        if (m_left > 0)
            return;
        m_left = -1;
        m_pause.stop();
        if (has("cut") || (has("noLength") && !has("stall"))) {
            later([this] { m_socket.disconnectFromHost(); });
        } else if (!has("stall")) {
            m_isAnswering = false;
            read();
        }
    }

    TestServer &m_server;
    QSslSocket &m_socket;
    QTimer m_pause;
    QByteArray m_input;
    TestServer::Answer m_answer;
    bool m_isAnswering = false; ///< or has nothing more to say
    int m_index = 0;            ///< of the answered request
    qint64 m_next = 0;
    qint64 m_left = -1; ///< of the body, still to be sent; -1: nothing is being sent
};

TestServer::TestServer(Scheme scheme) : m_scheme(scheme)
{
    if (!listen(QHostAddress::LocalHost))
        qFatal("the test server cannot listen");
    m_port = serverPort();
}

QUrl TestServer::url(const QString &path) const
{
    const QString scheme = m_scheme == Scheme::Http ? "http" : "https";
    return QUrl(QString("%1://127.0.0.1:%2%3").arg(scheme).arg(m_port).arg(path));
}

void TestServer::play(const QString &path, const QByteArray &body, const QByteArray &script)
{
    static const QList<QByteArray> known = QByteArray("status first cut stall mute claim noLength "
                                                      "ignoreRange trickle pause atOnce gone")
                                               .split(' ');
    const QString date =
        QLocale::c().toString(QDateTime::currentDateTimeUtc(), "ddd, dd MMM yyyy HH:mm:ss 'GMT'");
    QList<Answer> answers{{body, {{"Date", date.toLatin1()}}}};
    for (const QByteArray &word : script.simplified().split(' ')) {
        const QByteArray key = word.split('=').first();
        const QByteArray value = word.mid(key.size() + 1).replace('_', ' ');
        Answer newest = answers.takeLast();
        int count = 1;
        if (key == "then") {
            answers << newest;
            newest = {body, {}};
            for (const char *kept : {"Date", "ETag", "Last-Modified"})
                newest.words[kept] = answers.last().words[kept];
        } else if (key == "x") {
            count = value.toInt();
        } else if (key == "other") {
            newest.body = otherBody;
        } else if (!key.isEmpty()) {
            Q_ASSERT_X(isupper(key[0]) || known.contains(key), "an unknown word", key);
            newest.words[key] = value;
        }
        for (int i = 0; i < count; ++i)
            answers << newest;
    }
    m_scripts[path] = answers;
    if (script != "gone")
        return;
    close();
    for (QSslSocket *socket : findChildren<QSslSocket *>())
        socket->abort();
}

qint64 TestServer::bodySentBytes(const QString &start) const
{
    qint64 sum = 0;
    for (const Request &request : m_requests)
        sum += request.path.startsWith(start) ? request.bodySentBytes : 0;
    return sum;
}

void TestServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QSslSocket(this);
    socket->setSocketDescriptor(descriptor);
    connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
    new TestConnection(*this, *socket);
    if (m_scheme == Scheme::Http)
        return;
    const QByteArray pem =
        FS::readFile(QCoreApplication::applicationDirPath() + "/selfsigned.pem").value_or("");
    socket->setLocalCertificate(QSslCertificate(pem));
    socket->setPrivateKey(QSslKey(pem, QSsl::Rsa));
    socket->startServerEncryption();
}

TestServer::Answer TestServer::nextAnswer(const QString &path)
{
    const bool isWhole = m_scripts.contains(path);
    QList<Answer> &answers = m_scripts[isWhole ? path : path.section('?', 0, 0)];
    if (answers.isEmpty())
        return {{}, {{"status", "404"}}};
    return answers.size() > 1 ? answers.takeFirst() : answers.first();
}
