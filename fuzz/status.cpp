#include "fuzz/Fuzz.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include "core/servers/GetServerPlayerInfo.h"

namespace {

/// A game server on a thread of its own, which answers each question with the same bytes.
class GameServer
{
public:
    GameServer()
    {
        m_server.moveToThread(&m_thread);
        m_thread.start();
        inThread([this] {
            QObject::connect(&m_server, &QTcpServer::newConnection, &m_server,
                             [this] { answer(); });
            fuzz::require(m_server.listen(QHostAddress::LocalHost), "the target can listen");
        });
    }
    ~GameServer()
    {
        inThread([this] { m_server.close(); });
        m_thread.quit();
        m_thread.wait();
    }

    quint16 port() const { return m_server.serverPort(); }
    void setBytes(const QByteArray &bytes)
    {
        inThread([this, bytes] { m_bytes = bytes; });
    }

private:
    template <typename Work>
    void inThread(const Work &work)
    {
        QMetaObject::invokeMethod(&m_server, work, Qt::BlockingQueuedConnection);
    }

    void answer()
    {
        QTcpSocket *socket = m_server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            socket->readAll();
            socket->write(m_bytes);
            socket->disconnectFromHost();
        });
    }

    QThread m_thread;
    QTcpServer m_server;
    QByteArray m_bytes;
};

} // namespace

/// Status answers of game servers.
void fuzz::takeInput(const QByteArray &input)
{
    static GameServer server;
    server.setBytes(input);
    QMap<QString, QVariant> result;
    GetServerPlayerInfo().requestPlayerInfo(result, "127.0.0.1", server.port(), 2000);
    const int code = result["code"].toInt(), lag = result["lag"].toInt();
    require((code == 0 || code == 2) && lag >= 1 && lag <= 3, "the result is one that hosts know");
    require(result.contains("max") == (code == 0), "who tells of players tells of all");
}
