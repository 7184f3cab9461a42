#include "support/transferservice/TransferPlace.h"

#include <QHash>
#include <QList>
#include <QNetworkAccessManager>

namespace {

/// Qt 5 opens no more connections to one server.
constexpr int connectionsPerServer = 6;

} // namespace

/// All places of one manager, which owns it.
class TransferPlace::Queue : public QObject
{
public:
    explicit Queue(QNetworkAccessManager &manager) : QObject(&manager) {}

    static Queue &of(QNetworkAccessManager &manager)
    {
        for (QObject *child : manager.children()) {
            if (auto *queue = dynamic_cast<Queue *>(child))
                return *queue;
        }
        return *new Queue(manager);
    }

    void join(TransferPlace *place)
    {
        m_places[place->m_server].append(place);
        grantFirst(place->m_server);
    }

    void leave(TransferPlace *place)
    {
        QList<TransferPlace *> &places = m_places[place->m_server];
        places.removeOne(place);
        if (places.isEmpty())
            m_places.remove(place->m_server);
        else
            grantFirst(place->m_server);
    }

private:
    void grantFirst(const QString &server)
    {
        for (TransferPlace *place : m_places.value(server).mid(0, connectionsPerServer))
            place->grant();
    }

    QHash<QString, QList<TransferPlace *>> m_places; ///< by server, in order of arrival
};

TransferPlace::TransferPlace(QNetworkAccessManager &manager, const QUrl &url)
    : m_queue(Queue::of(manager)),
      m_server(url.scheme() + QLatin1String("://") + url.authority(QUrl::FullyEncoded))
{
    m_queue.join(this);
}

TransferPlace::~TransferPlace()
{
    m_queue.leave(this);
}

void TransferPlace::grant()
{
    if (m_isGranted)
        return;
    m_isGranted = true;
    QMetaObject::invokeMethod(this, &TransferPlace::granted, Qt::QueuedConnection);
}
