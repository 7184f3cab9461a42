#include "core/servers/GetServerPlayerInfo.h"

#include <limits>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTimer>

#include "support/jsonfskit/Log.h"

namespace {

/// Far above what a server of the game can say, whose texts end at 32767 characters. Nothing longer
/// is waited for.
constexpr quint32 longestTextBytes = 1024 * 1024;
/// What Qt may read ahead.
constexpr qint64 readBufferBytes = 64 * 1024;

/// 7 bits a byte, low group first, the top bit set on every byte but the last.
QByteArray variableLength(quint32 value)
{
    QByteArray bytes;
    for (; value > 0x7f; value >>= 7)
        bytes += static_cast<char>(value | 0x80);
    return bytes += static_cast<char>(value);
}

QByteArray withLength(const QByteArray &bytes)
{
    return variableLength(static_cast<quint32>(bytes.size())) + bytes;
}

/// The handshake and the status request.
QByteArray question(const QString &host, unsigned short port)
{
    constexpr char nextState = 1;
    QByteArray handshake(2, '\0'); // packet id, protocol version
    handshake += withLength(host.toUtf8());
    handshake += static_cast<char>(port & 0xff);
    handshake += static_cast<char>(port >> 8);
    handshake += nextState;
    return withLength(handshake) + QByteArrayLiteral("\x01\x00");
}

/// The answer of a server, read from the socket as it arrives and never beyond its announced end.
class Answer
{
public:
    explicit Answer(QTcpSocket &socket) : m_socket(socket) {}

    /// Takes what is there; true when the answer is complete or too long to be one.
    bool isRead()
    {
        if (!readHeader())
            return false;
        if (m_number > longestTextBytes)
            return true;
        m_text += m_socket.read(m_number - m_text.size());
        return m_text.size() == static_cast<int>(m_number);
    }

    /// Empty unless the whole answer is there.
    QJsonObject players() const
    {
        if (m_text.size() < static_cast<int>(m_number))
            return {};
        return QJsonDocument::fromJson(m_text).object()[QLatin1String("players")].toObject();
    }

private:
    /// Packet length, packet id and text length; m_number ends as the last of them.
    bool readHeader()
    {
        constexpr int fields = 3, bytesPerField = 5;
        char byte = 0;
        while (m_fieldsRead < fields && m_socket.getChar(&byte)) {
            if (m_bytesOfField == 0)
                m_number = 0;
            m_number |= static_cast<quint32>(byte & 0x7f) << (7 * m_bytesOfField++);
            if ((byte & 0x80) && m_bytesOfField < bytesPerField)
                continue;
            m_bytesOfField = 0;
            ++m_fieldsRead;
        }
        return m_fieldsRead == fields;
    }

    QTcpSocket &m_socket;
    int m_fieldsRead = 0;
    int m_bytesOfField = 0;
    quint32 m_number = 0;
    QByteArray m_text;
};

/// Runs a local event loop until @p signal of the socket comes with @p isDone true, the connection
/// ends, or the time is over.
template <typename Signal, typename Condition>
void waitInLoop(QTcpSocket &socket, int waitMs, Signal signal, const Condition &isDone)
{
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&socket, &QTcpSocket::disconnected, &loop, &QEventLoop::quit);
    QObject::connect(&socket, signal, &loop, [&loop, &isDone] {
        if (isDone())
            loop.quit();
    });
    timer.start(waitMs);
    loop.exec();
}

bool connectTo(QTcpSocket &socket, const QString &host, unsigned short port, int waitMs)
{
    QElapsedTimer timer;
    timer.start();
    socket.setReadBufferSize(readBufferBytes);
    socket.connectToHost(host, port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
    // waitForConnected() would look the name up itself, and for as long as that takes.
    const auto isLookedUp = [&] { return socket.state() != QAbstractSocket::HostLookupState; };
    if (!isLookedUp())
        waitInLoop(socket, waitMs, &QTcpSocket::stateChanged, isLookedUp);
    return isLookedUp() &&
           socket.waitForConnected(static_cast<int>(qMax<qint64>(0, waitMs - timer.elapsed())));
}

int lagOf(qint64 responseMs)
{
    if (responseMs <= 150)
        return 1;
    return responseMs <= 300 ? 2 : 3;
}

void tellPlayers(QMap<QString, QVariant> &result, const QJsonObject &players)
{
    if (players.isEmpty())
        return;
    result[QStringLiteral("code")] = 0;
    for (const QString &key : {QStringLiteral("max"), QStringLiteral("online")})
        result[key] = players.contains(key) ? players[key].toInt() : -1;
}

} // namespace

bool GetServerPlayerInfo::requestPlayerInfo(QMap<QString, QVariant> &result, const QString &host,
                                            unsigned short port, unsigned int waitMs) const
{
    result[QStringLiteral("code")] = 2;
    result[QStringLiteral("lag")] = 3;
    if (waitMs == 0) {
        Log::warning(QStringLiteral("wait time can not be zero"));
        return false;
    }
    const int wait = static_cast<int>(qMin(waitMs, unsigned(std::numeric_limits<int>::max())));
    QTcpSocket socket;
    if (!connectTo(socket, host, port, wait))
        return false;

    socket.write(question(host, port));
    QElapsedTimer timer;
    timer.start();
    if (!socket.waitForReadyRead(wait))
        return false;
    result[QStringLiteral("lag")] = lagOf(timer.elapsed());

    Answer answer(socket);
    const auto isRead = [&answer] { return answer.isRead(); };
    if (!isRead() && socket.state() == QAbstractSocket::ConnectedState)
        waitInLoop(socket, wait, &QTcpSocket::readyRead, isRead);
    tellPlayers(result, answer.players());
    return true;
}
