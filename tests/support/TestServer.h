#pragma once

#include <QHash>
#include <QList>
#include <QTcpServer>
#include <QUrl>

/// A web server on loopback that answers by a script. It needs the event loop of its thread.
///
///     server.play("/file", body, "ETag=\"1\" cut=1024 then status=503 x=4 then");
///
/// Each request for a path takes the next answer of its script; the last one stays. A path with a
/// query takes that of the path alone if it has none itself. A path without a script is a 404. An
/// answer gives what the request deserves (200, 206, 304 or 416), unless its words say otherwise:
///
///     status=N     this status; without a body, unless it is a 2xx
///     Name=value   this header, with "_" for a blank
///     first=N      serves only so much of the body
///     other        serves otherBody instead
///     cut=N        closes after N bytes of the body
///     stall=N      says nothing more after N bytes of the body
///     mute         says nothing at all
///     claim=N      what Content-Length says, whatever the body is
///     noLength     says no length, and closes at the end, unless it stalls there
///     ignoreRange  knows no ranges
///     trickle=N    sends N bytes, then pauses for
///     pause=N      so many milliseconds, or one
///     atOnce       answers and closes without the latency of a real network: Qt 5 then may take a
///                  body that is cut off for a whole one, and sends the request again by itself
///     x=N          this answer N times
///     then         the next answer: the body again, with the same ETag and Last-Modified
class TestServer : public QTcpServer
{
    Q_OBJECT
public:
    enum class Scheme { Http, Https };

    struct Request
    {
        QString path;
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        qint64 bodySentBytes = 0;              ///< of the answer
    };

    explicit TestServer(Scheme scheme = Scheme::Http);

    QUrl url(const QString &path) const;
    /// Replaces the script of @p path. The script "gone" refuses connections from now on, and ends
    /// those that are open.
    void play(const QString &path, const QByteArray &body, const QByteArray &script);
    QList<Request> requests() const { return m_requests; }
    /// Of the answers for the paths that begin with @p start.
    qint64 bodySentBytes(const QString &start = {}) const;

    QByteArray otherBody;

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    friend class TestConnection;
    using Words = QHash<QByteArray, QByteArray>;
    struct Answer
    {
        QByteArray body;
        Words words;
    };
    Answer nextAnswer(const QString &path);

    const Scheme m_scheme;
    quint16 m_port = 0; ///< also when it is gone
    QHash<QString, QList<Answer>> m_scripts;
    QList<Request> m_requests;
};
