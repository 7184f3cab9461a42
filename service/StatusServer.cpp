#include "service/StatusServer.h"

#include <optional>
#include <utility>

#include <QTcpSocket>
#include <QTimer>

namespace {

const QString faultPath = QStringLiteral("/game/status");
constexpr int longestPacketBytes = 1024; // a host name of 255 characters and some numbers
constexpr int patienceMs = 30'000;

/// Reads the fields of a packet; after the first one that is not there, everything fails.
class PacketReader
{
public:
    explicit PacketReader(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    std::optional<quint32> variableInteger()
    {
        quint32 value = 0;
        for (int shift = 0; shift < 35 && m_at < m_bytes.size(); shift += 7) {
            const auto byte = quint8(m_bytes.at(m_at++));
            value |= quint32(byte & 0x7fu) << shift;
            if ((byte & 0x80u) == 0)
                return value;
        }
        return {};
    }
    std::optional<QByteArray> take(quint32 size)
    {
        if (qint64(size) > m_bytes.size() - m_at)
            return {};
        m_at += int(size);
        return m_bytes.mid(m_at - int(size), int(size));
    }
    int position() const { return m_at; }
    bool isAtEnd() const { return m_at == m_bytes.size(); }

private:
    const QByteArray m_bytes;
    int m_at = 0;
};

QByteArray variableInteger(quint32 value)
{
    QByteArray bytes;
    for (; value > 0x7fu; value >>= 7)
        bytes.append(char((value & 0x7fu) | 0x80u));
    return bytes.append(char(value));
}

QByteArray packet(const QByteArray &content)
{
    return variableInteger(quint32(content.size())) + content;
}

/// One client and how far the talk with it is. Ends with its socket.
class Talk : public QObject
{
public:
    Talk(QTcpSocket *socket, QByteArray status, FaultPlan plan, std::function<void(qint64)> count)
        : QObject(socket),
          m_socket(socket),
          m_status(std::move(status)),
          m_plan(std::move(plan)),
          m_count(std::move(count))
    {
        QTimer::singleShot(patienceMs, socket, &QTcpSocket::abort);
        QTimer::singleShot(m_plan.latency, this, [this] {
            connect(m_socket, &QTcpSocket::readyRead, this, &Talk::read);
            read();
        });
    }

private:
    void read()
    {
        m_received += m_socket->readAll();
        while (m_socket->state() == QTcpSocket::ConnectedState && !m_received.isEmpty()) {
            PacketReader reader(m_received);
            const std::optional<quint32> length = reader.variableInteger();
            const bool isTooLong = length ? *length > longestPacketBytes : m_received.size() >= 5;
            if (isTooLong)
                return m_socket->disconnectFromHost();
            const std::optional<QByteArray> content =
                length ? reader.take(*length) : std::optional<QByteArray>();
            if (!content)
                return; // the rest is on its way
            m_received.remove(0, reader.position());
            if (!answer(*content))
                m_socket->disconnectFromHost();
        }
    }

    bool answer(const QByteArray &content)
    {
        switch (m_next) {
        case Next::Handshake:
            m_next = Next::Request;
            return isHandshake(content);
        case Next::Request:
            m_next = Next::Ping;
            if (content != QByteArray(1, '\0') || m_status.isEmpty())
                return false;
            send(QByteArray(1, '\0') + variableInteger(quint32(m_status.size())) + m_status);
            return true;
        case Next::Ping:
            if (content.size() != 9 || content.at(0) != '\1')
                return false;
            send(content);
            m_socket->disconnectFromHost();
            return true;
        }
        return false;
    }

    static bool isHandshake(const QByteArray &content)
    {
        PacketReader reader(content);
        const bool hasId = reader.variableInteger() == 0u;
        const bool hasVersion = reader.variableInteger().has_value();
        const std::optional<quint32> hostBytes = reader.variableInteger();
        const bool hasHost = hostBytes && reader.take(*hostBytes);
        const bool hasPort = reader.take(2).has_value();
        const bool asksForStatus = reader.variableInteger() == 1u;
        return hasId && hasVersion && hasHost && hasPort && asksForStatus && reader.isAtEnd();
    }

    void send(const QByteArray &content)
    {
        QByteArray bytes = packet(content);
        if (m_plan.cut)
            bytes.truncate(
                int(qMin<qint64>(m_plan.cutAt.value_or(bytes.size() / 2), bytes.size())));
        m_count(m_socket->write(bytes));
        if (m_plan.cut)
            m_socket->disconnectFromHost();
    }

    enum class Next { Handshake, Request, Ping };

    QTcpSocket *const m_socket;
    const QByteArray m_status;
    const FaultPlan m_plan;
    const std::function<void(qint64)> m_count;
    QByteArray m_received;
    Next m_next = Next::Handshake;
};

} // namespace

StatusServer::StatusServer(std::function<QByteArray()> status, Faults &faults, Traffic &traffic)
    : m_status(std::move(status)), m_faults(faults), m_traffic(traffic)
{
}

void StatusServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QTcpSocket(this);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    m_traffic.addRequest(faultPath);
    const FaultPlan plan = m_faults.planFor(faultPath);
    if (plan.drop || plan.error != 0)
        return socket->abort();
    // The socket owns its talk.
    new Talk(socket, m_status(), plan,
             [this](qint64 bytes) { m_traffic.addBytes(faultPath, bytes); });
}
