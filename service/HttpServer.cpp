#include "service/HttpServer.h"

#include <cerrno>
#include <thread>
#include <utility>

#include <httplib.h>
#include <poll.h>

#include <QRandomGenerator>

namespace {

constexpr int patienceMs = 30'000;
constexpr size_t threadCount = 64; // a connection that is kept alive holds one

/// One connection of a client. Sends at the speed of the bandwidth limit and breaks off where the
/// faults say so.
class Connection : public httplib::Stream
{
public:
    Connection(int socket, Faults &faults, Traffic &traffic)
        : m_socket(socket), m_faults(faults), m_traffic(traffic)
    {
    }
    ~Connection() override
    {
        ::shutdown(m_socket, SHUT_RDWR);
        ::close(m_socket);
    }

    /// The faults of the request that this thread is answering.
    static thread_local FaultPlan plan;

    /// False when the client has gone, or has been hung up on.
    bool waitForRequest();
    void begin(const QString &path);

    bool is_readable() const override { return isReady(POLLIN, patienceMs); }
    bool is_writable() const override { return isReady(POLLOUT, patienceMs); }
    ssize_t read(char *data, size_t size) override;
    ssize_t write(const char *data, size_t size) override;
    void get_remote_ip_and_port(std::string &, int &) const override {}
    void get_local_ip_and_port(std::string &, int &) const override {}
    socket_t socket() const override { return m_socket; }

private:
    bool isReady(short events, int timeoutMs) const;
    ssize_t writeHead(const char *data, size_t size);
    ssize_t writeBody(const char *data, size_t size);
    bool send(const char *data, size_t size);

    const int m_socket;
    Faults &m_faults;
    Traffic &m_traffic;
    QString m_path;
    bool m_isCounted = false;
    bool m_isHeadSent = false;
    bool m_isBroken = false;
    qint64 m_bytesToCut = -1; ///< of the body; negative if it is not cut
};

thread_local FaultPlan Connection::plan;

bool Connection::isReady(short events, int timeoutMs) const
{
    pollfd state{m_socket, events, 0};
    int ready = 0;
    do
        ready = ::poll(&state, 1, timeoutMs);
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool Connection::waitForRequest()
{
    plan = {};
    m_isCounted = false;
    m_isHeadSent = false;
    m_bytesToCut = -1;
    char next = 0;
    return !m_isBroken && isReady(POLLIN, patienceMs) && ::recv(m_socket, &next, 1, MSG_PEEK) == 1;
}

void Connection::begin(const QString &path)
{
    m_path = path;
    m_isCounted = !path.startsWith(QLatin1String("/control"));
    if (!m_isCounted)
        return;
    m_traffic.addRequest(path);
    plan = m_faults.planFor(path);
    std::this_thread::sleep_for(plan.latency);
}

ssize_t Connection::read(char *data, size_t size)
{
    ssize_t got = 0;
    do
        got = ::recv(m_socket, data, size, 0);
    while (got < 0 && errno == EINTR);
    return got;
}

bool Connection::send(const char *data, size_t size)
{
    while (size > 0) {
        const ssize_t sent = ::send(m_socket, data, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        data += sent;
        size -= size_t(sent);
    }
    return true;
}

/// The library writes the status line and the headers at once, and then the body.
ssize_t Connection::writeHead(const char *data, size_t size)
{
    m_isHeadSent = true;
    if (plan.drop || !send(data, size))
        return -1;
    if (plan.cut) {
        const QByteArray head = QByteArray::fromRawData(data, int(size));
        const QByteArray name = QByteArrayLiteral("Content-Length: ");
        const int at = head.indexOf(name) + name.size();
        const qint64 length = head.mid(at, head.indexOf('\r', at) - at).toLongLong();
        m_bytesToCut = plan.cutAt.value_or(
            qint64(QRandomGenerator::global()->generateDouble() * double(length)));
    }
    return ssize_t(size);
}

ssize_t Connection::writeBody(const char *data, size_t size)
{
    if (plan.limit) {
        size = std::min(size, size_t(plan.limit->blockBytes()));
        plan.limit->wait(qint64(size));
    }
    if (m_bytesToCut >= 0)
        size = std::min(size, size_t(m_bytesToCut));
    if (size == 0 || !send(data, size))
        return -1;
    if (m_bytesToCut >= 0)
        m_bytesToCut -= qint64(size);
    if (m_isCounted)
        m_traffic.addBytes(m_path, qint64(size));
    return ssize_t(size);
}

ssize_t Connection::write(const char *data, size_t size)
{
    if (m_isBroken)
        return -1;
    const ssize_t written = m_isHeadSent ? writeBody(data, size) : writeHead(data, size);
    m_isBroken = written < 0;
    return written;
}

Call callOf(const httplib::Request &request)
{
    Call call = Call::fromTarget(QByteArray::fromStdString(request.target));
    for (const auto &[name, value] : request.headers)
        call.headers.insert(QByteArray::fromStdString(name).toLower(),
                            QByteArray::fromStdString(value));
    return call;
}

/// Says the length itself, so that the library applies no range of its own: which part goes out is
/// settled already.
void sendBody(const Answer &answer, httplib::Response &response)
{
    const qint64 length = answer.file ? answer.lengthBytes : answer.body.size();
    response.set_header("Content-Length", std::to_string(length));
    response.set_content_provider(
        answer.contentType.toStdString(), [answer, length](size_t sent, httplib::DataSink &sink) {
            const qint64 left = length - qint64(sent);
            QByteArray block = answer.body;
            if (answer.file && left > 0) {
                if (!answer.file->seek(answer.offset + qint64(sent)))
                    return false;
                block = answer.file->read(qMin<qint64>(left, 65536));
                if (block.isEmpty())
                    return false; // became shorter: the connection breaks off
            }
            const bool isWritten = left <= 0 || sink.write(block.constData(), size_t(block.size()));
            if (left <= block.size())
                sink.done();
            return isWritten;
        });
}

} // namespace

class HttpServer::Server : public httplib::Server
{
public:
    Server(HttpServer::Handler handler, Faults &faults, Traffic &traffic)
        : m_handler(std::move(handler)), m_faults(faults), m_traffic(traffic)
    {
        new_task_queue = [] { return new httplib::ThreadPool(threadCount); };
        set_write_timeout(patienceMs / 1000);
        set_keep_alive_timeout(patienceMs / 1000); // what the answers tell
        set_keep_alive_max_count(1000);
        set_tcp_nodelay(true);
        Get(".*", [this](const httplib::Request &request, httplib::Response &response) {
            answer(request, response);
        });
    }

private:
    void answer(const httplib::Request &request, httplib::Response &response)
    {
        Answer answer;
        answer.status = Connection::plan.error;
        if (answer.status == 0)
            answer = m_handler(callOf(request));
        else if (!Connection::plan.retryAfter.isEmpty())
            answer.headers.append({"Retry-After", Connection::plan.retryAfter});
        response.status = answer.status;
        for (const auto &[name, value] : answer.headers)
            response.set_header(name.toStdString(), value.toStdString());
        if (answer.status != 304)
            sendBody(answer, response);
    }

    bool process_and_close_socket(socket_t socket) override
    {
        Connection connection(socket, m_faults, m_traffic);
        bool isGood = true;
        bool isClosed = false;
        while (isGood && !isClosed && is_running() && connection.waitForRequest())
            isGood =
                process_request(connection, false, isClosed, [&](const httplib::Request &request) {
                    connection.begin(
                        Call::fromTarget(QByteArray::fromStdString(request.target)).path);
                });
        return isGood;
    }

    const HttpServer::Handler m_handler;
    Faults &m_faults;
    Traffic &m_traffic;
};

HttpServer::HttpServer(HttpServer::Handler handler, Faults &faults, Traffic &traffic)
    : m_server(std::make_unique<Server>(std::move(handler), faults, traffic))
{
}

HttpServer::~HttpServer() = default;

quint16 HttpServer::bind(quint16 port)
{
    const std::string loopback = "127.0.0.1";
    if (port == 0)
        return quint16(qMax(0, m_server->bind_to_any_port(loopback)));
    return m_server->bind_to_port(loopback, port) ? port : 0;
}

void HttpServer::run()
{
    m_server->listen_after_bind();
}

void HttpServer::stop()
{
    m_server->stop();
}
