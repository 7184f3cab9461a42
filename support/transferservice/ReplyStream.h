#pragma once

#include <chrono>

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>

/// One HTTP exchange, read in pieces from the event loop: at most one piece per turn, so that
/// whatever is done with a piece does not block the thread for long, and so little is buffered that
/// memory stays flat however large the body is.
///
/// Takes over the reply. All signals come from the event loop, never from within a signal of the
/// reply, so that receivers may delete this object and the network manager. Deleting it ends the
/// exchange silently.
class ReplyStream : public QObject
{
    Q_OBJECT
public:
    /// The exchange counts as broken after @p stall without a byte.
    ReplyStream(QNetworkReply *reply, std::chrono::milliseconds stall);
    ~ReplyStream() override;

    const QNetworkReply &reply() const { return *m_reply; }
    /// True when the body ended without a fault of the connection.
    bool isWhole() const;
    /// All of the body that has arrived and was not handed out yet.
    QByteArray takeRest();

Q_SIGNALS:
    /// The final answer's head is there; comes before the first piece, if at all.
    void headArrived();
    /// @p data is valid only during the call.
    void pieceArrived(const char *data, qint64 size);
    /// The last signal.
    void ended();

private:
    void schedule();
    void pump();
    bool announceHead();
    bool handOutPiece();
    void onStalled();

    QPointer<QNetworkReply> m_reply;
    QTimer m_stallTimer;
    QByteArray m_piece;
    bool m_isScheduled = false;
    bool m_isHeadAnnounced = false;
    bool m_isStalled = false;
};
