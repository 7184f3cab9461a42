#pragma once

#include <QObject>
#include <QUrl>

class QNetworkAccessManager;

/// The right to one exchange with a server, among as many as a manager has connections to it.
///
/// Qt lets further requests wait silently inside of the manager, where waiting and a stall look
/// alike. So they wait here, in order, and are sent when there is a connection for them.
class TransferPlace : public QObject
{
    Q_OBJECT
public:
    /// Joins the queue for the server of @p url. @p manager has to outlive this object.
    TransferPlace(QNetworkAccessManager &manager, const QUrl &url);
    /// Leaves the queue; the next in it gets its turn.
    ~TransferPlace() override;

Q_SIGNALS:
    /// Comes once, from the event loop.
    void granted();

private:
    class Queue;

    void grant();

    Queue &m_queue;
    const QString m_server;
    bool m_isGranted = false;
};
