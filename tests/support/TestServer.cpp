#include "tests/support/TestServer.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>

namespace {

/// Never more than this waits unsent, so that what counts as sent is on its way.
constexpr qint64 sendWindow = 64 * 1024;

QByteArray testCertificateFile()
{
    QFile file(QCoreApplication::applicationDirPath() + QStringLiteral("/selfsigned.pem"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
        connect(&m_pause, &QTimer::timeout, this, [this] { sendPiece(m_answer.bytesPerPause); });
    }

private:
    void read()
    {
        m_input += m_socket.readAll();
        const int end = m_input.indexOf("\r\n\r\n");
        if (m_isAnswering || end < 0 || m_answer.cutAfter >= 0)
            return;
        const QList<QByteArray> lines = m_input.left(end).replace('\r', "").split('\n');
        m_input.remove(0, end + 4);
        TestServer::Request request;
        request.method = lines.first().split(' ').value(0);
        request.path = QString::fromUtf8(lines.first().split(' ').value(1));
        for (const QByteArray &line : lines.mid(1)) {
            const int colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        m_answer = m_server.nextAnswer(request.path);
        m_isAnswering = true;
        QTimer::singleShot(m_answer.latencyMs, Qt::PreciseTimer, this,
                           [this, request]() mutable { begin(request); });
    }

    void begin(TestServer::Request &request)
    {
        m_next = 0;
        m_end = m_answer.body.size();
        QByteArray head;
        if (m_answer.status == 0)
            m_answer.status = deserved(request, head);
        if (m_answer.status / 100 != 2)
            m_end = m_next;
        request.status = m_answer.status;
        m_index = m_server.m_requests.size();
        m_server.m_requests << request;
        if (m_answer.stallAfter == 0)
            return;
        m_toSend = m_end - m_next;
        const qint64 length = m_answer.lengthClaim < 0 ? m_toSend : m_answer.lengthClaim;
        if (m_answer.tellsLength)
            head += "Content-Length: " + QByteArray::number(length) + "\r\n";
        else
            m_answer.cutAfter = m_toSend;
        if (m_answer.cutAfter >= 0)
            m_toSend = qMin(m_toSend, m_answer.cutAfter);
        if (m_answer.stallAfter > 0)
            m_toSend = qMin(m_toSend, m_answer.stallAfter - 1);
        if (request.method == "HEAD")
            m_toSend = 0;
        for (const auto &header : qAsConst(m_answer.headers))
            head += header.first + ": " + header.second + "\r\n";
        m_socket.write("HTTP/1.1 " + QByteArray::number(m_answer.status) + " Scripted\r\n" + head +
                       "\r\n");
        if (m_answer.bytesPerPause > 0)
            m_pause.start(m_answer.pauseMs);
        send();
    }

    int deserved(const TestServer::Request &request, QByteArray &head)
    {
        const auto given = [&request](const char *name) { return request.headers.value(name); };
        head += "Date: " +
                QLocale::c()
                    .toString(QDateTime::currentDateTimeUtc(),
                              QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"))
                    .toLatin1() +
                "\r\n";
        if (!m_answer.etag.isEmpty())
            head += "ETag: " + m_answer.etag + "\r\n";
        if (!m_answer.lastModified.isEmpty())
            head += "Last-Modified: " + m_answer.lastModified + "\r\n";
        const auto isCurrent = [](const QByteArray &theirs, const QByteArray &ours) {
            return !ours.isEmpty() && theirs == ours;
        };
        if (isCurrent(given("if-none-match"), m_answer.etag) ||
            isCurrent(given("if-modified-since"), m_answer.lastModified))
            return 304;
        static const QRegularExpression form(QStringLiteral("^bytes=(\\d+)-$"));
        const auto range = form.match(QString::fromLatin1(given("range")));
        const QByteArray condition = given("if-range");
        if (!m_answer.knowsRanges || !range.hasMatch() ||
            (!condition.isEmpty() && !isCurrent(condition, m_answer.etag) &&
             !isCurrent(condition, m_answer.lastModified)))
            return 200;
        m_next = range.captured(1).toLongLong();
        const QByteArray size = QByteArray::number(m_answer.body.size());
        if (m_next >= m_answer.body.size())
            return 416;
        head += "Content-Range: bytes " + QByteArray::number(m_next) + '-' +
                QByteArray::number(m_answer.body.size() - 1) + '/' + size + "\r\n";
        return 206;
    }

    void send()
    {
        if (!m_isAnswering || m_answer.stallAfter == 0 || m_pause.isActive())
            return;
        if (m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite() < sendWindow)
            sendPiece(sendWindow);
    }

    void sendPiece(qint64 most)
    {
        const qint64 bytes = qMin(most, m_toSend);
        m_toSend -= bytes;
        m_server.m_requests[m_index].bodySentBytes += bytes;
        m_socket.write(m_answer.body.constData() + m_next, bytes);
        m_next += bytes;
        if (m_toSend > 0)
            return;
        m_pause.stop();
        if (m_answer.cutAfter >= 0) {
            m_isAnswering = false;
            QTimer::singleShot(m_answer.latencyMs, Qt::PreciseTimer, &m_socket,
                               [this] { m_socket.disconnectFromHost(); });
            return;
        }
        m_isAnswering = m_answer.stallAfter > 0;
        if (m_isAnswering)
            m_answer.stallAfter = 0;
        else
            read();
    }

    TestServer &m_server;
    QSslSocket &m_socket;
    QTimer m_pause;
    QByteArray m_input;
    TestServer::Answer m_answer;
    bool m_isAnswering = false;
    int m_index = 0; ///< of the answered request
    qint64 m_next = 0, m_end = 0, m_toSend = 0;
};

TestServer::Script &TestServer::Script::header(const QByteArray &name, const QByteArray &value)
{
    answers.last().headers << qMakePair(name, value);
    return *this;
}

TestServer::Script &TestServer::Script::then()
{
    Answer next;
    next.body = answers.last().body;
    next.etag = answers.last().etag;
    next.lastModified = answers.last().lastModified;
    answers << next;
    return *this;
}

TestServer::Script &TestServer::Script::times(int count)
{
    const Answer newest = answers.last();
    for (int i = 1; i < count; ++i)
        answers << newest;
    return *this;
}

TestServer::TestServer(Scheme scheme) : m_scheme(scheme)
{
    if (!listen(QHostAddress::LocalHost))
        qFatal("the test server cannot listen");
    m_port = serverPort();
}

QUrl TestServer::url(const QString &path) const
{
    const QString scheme =
        m_scheme == Scheme::Http ? QStringLiteral("http") : QStringLiteral("https");
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3").arg(scheme).arg(m_port).arg(path));
}

TestServer::Script &TestServer::at(const QString &path)
{
    return m_scripts[path] = Script();
}

QList<TestServer::Request> TestServer::requests(const QString &path) const
{
    QList<Request> found;
    for (const Request &request : m_requests) {
        if (path.isEmpty() || request.path == path ||
            request.path.startsWith(path + QLatin1Char('?')))
            found << request;
    }
    return found;
}

qint64 TestServer::bodySentBytes(const QString &path) const
{
    qint64 sum = 0;
    for (const Request &request : requests(path))
        sum += request.bodySentBytes;
    return sum;
}

void TestServer::goAway()
{
    close();
    for (QSslSocket *socket : findChildren<QSslSocket *>())
        socket->abort();
}

void TestServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QSslSocket(this);
    socket->setSocketDescriptor(descriptor);
    connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
    new TestConnection(*this, *socket);
    if (m_scheme == Scheme::Http)
        return;
    static const QByteArray pem = testCertificateFile();
    socket->setLocalCertificate(QSslCertificate(pem));
    socket->setPrivateKey(QSslKey(pem, QSsl::Rsa));
    socket->startServerEncryption();
}

TestServer::Answer TestServer::nextAnswer(const QString &path)
{
    auto script = m_scripts.find(path);
    if (script == m_scripts.end())
        script = m_scripts.find(path.section(QLatin1Char('?'), 0, 0));
    if (script == m_scripts.end()) {
        Answer missing;
        missing.status = 404;
        return missing;
    }
    return script->answers.size() > 1 ? script->answers.takeFirst() : script->answers.first();
}
