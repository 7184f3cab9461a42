#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

/// A web server on loopback that answers by a script. It needs the event loop of its thread.
///
///     TestServer server;
///     server.at("/file").serve(body).etag("\"1\"").cutAfter(1024).then().status(503).then();
///     ... server.url("/file") ... server.requests("/file")
///
/// Each request for a path takes the next answer of its script; the last one stays. A path without
/// a script is a 404.
class TestServer : public QTcpServer
{
    Q_OBJECT
public:
    enum class Scheme { Http, Https };

    struct Answer
    {
        QByteArray body;
        QByteArray etag;
        QByteArray lastModified;
        QList<QPair<QByteArray, QByteArray>> headers;
        int status = 0; ///< 0: what the request deserves: 200, 206, 304 or 416
        qint64 cutAfter = -1;
        qint64 stallAfter = -1;
        qint64 lengthClaim = -1;
        int latencyMs = 5; ///< before the head and before a close
        int bytesPerPause = 0;
        int pauseMs = 0;
        bool knowsRanges = true;
        bool tellsLength = true;
    };

    /// Each call changes the newest answer; then() begins another one, with the same content but
    /// without the faults.
    class Script
    {
    public:
        Script() : answers({Answer()}) {}
        Script &serve(const QByteArray &body) { return set(&Answer::body, body); }
        Script &etag(const QByteArray &quoted) { return set(&Answer::etag, quoted); }
        Script &lastModified(const QByteArray &date) { return set(&Answer::lastModified, date); }
        /// A bare status: the body stays away.
        Script &status(int status) { return set(&Answer::status, status); }
        Script &header(const QByteArray &name, const QByteArray &value);
        Script &cookie(const QByteArray &value) { return header("Set-Cookie", value); }
        Script &retryAfter(int s) { return header("Retry-After", QByteArray::number(s)); }
        Script &redirect(const QUrl &to) { return status(302).header("Location", to.toEncoded()); }
        /// Closes the connection after @p bytes of the body.
        Script &cutAfter(qint64 bytes) { return set(&Answer::cutAfter, bytes); }
        /// Answers and closes without the latency of a real network. When an answer is there before
        /// Qt 5 has noted that its request was sent, it takes a body that is cut off for a whole
        /// one, and sends the request again by itself.
        Script &atOnce() { return set(&Answer::latencyMs, 0); }
        /// Says nothing more after @p bytes of the body; -1: not even the head is sent.
        Script &stallAfter(qint64 bytes) { return set(&Answer::stallAfter, bytes + 1); }
        Script &stall() { return stallAfter(-1); }
        /// What Content-Length says, whatever the body is.
        Script &lengthClaim(qint64 bytes) { return set(&Answer::lengthClaim, bytes); }
        Script &noLength() { return set(&Answer::tellsLength, false); }
        Script &ignoreRange() { return set(&Answer::knowsRanges, false); }
        Script &trickle(int bytes, int everyMs)
        {
            return set(&Answer::bytesPerPause, bytes).set(&Answer::pauseMs, everyMs);
        }
        Script &then();
        /// The newest answer @p count times altogether.
        Script &times(int count);

    private:
        friend class TestServer;
        template <typename Value, typename Given>
        Script &set(Value Answer::*member, const Given &value)
        {
            answers.last().*member = value;
            return *this;
        }
        QList<Answer> answers;
    };

    struct Request
    {
        QByteArray method;
        QString path;                          ///< with its query
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        int status = 0;
        qint64 bodySentBytes = 0;
    };

    explicit TestServer(Scheme scheme = Scheme::Http);

    QUrl url(const QString &path) const;
    /// A new script for @p path, with or without a query; an old one is forgotten.
    Script &at(const QString &path);
    /// The requests for @p path so far, or all.
    QList<Request> requests(const QString &path = QString()) const;
    qint64 bodySentBytes(const QString &path = QString()) const;
    /// Refuses connections from now on, and ends those that are open.
    void goAway();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    friend class TestConnection;
    Answer nextAnswer(const QString &path);

    const Scheme m_scheme;
    quint16 m_port = 0; ///< also after goAway()
    QHash<QString, Script> m_scripts;
    QList<Request> m_requests;
};
