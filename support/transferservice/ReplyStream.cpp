#include "support/transferservice/ReplyStream.h"

#include "support/transferservice/ResponseHead.h"

namespace {

constexpr int pieceBytes = 1024 * 1024;
/// A quarter of this makes a transfer on a fast line wait for this thread half of the time.
constexpr qint64 bufferBytes = 8 * pieceBytes;

} // namespace

ReplyStream::ReplyStream(QNetworkReply *reply, std::chrono::milliseconds stall)
    : m_reply(reply), m_stallTimer(this)
{
    m_stallTimer.setSingleShot(true);
    m_stallTimer.setInterval(stall);
    connect(&m_stallTimer, &QTimer::timeout, this, &ReplyStream::onStalled);
    m_stallTimer.start();
    reply->setReadBufferSize(bufferBytes);
    connect(reply, &QNetworkReply::metaDataChanged, this, &ReplyStream::schedule);
    connect(reply, &QNetworkReply::readyRead, this, &ReplyStream::schedule);
    connect(reply, &QNetworkReply::finished, this, &ReplyStream::schedule);
}

ReplyStream::~ReplyStream()
{
    if (!m_reply)
        return;
    // Its end closes the connection. Aborting a reply that has its error already makes Qt complain.
    m_reply->disconnect(this);
    m_reply->deleteLater();
}

bool ReplyStream::isWhole() const
{
    return !m_isStalled && m_reply->isFinished() && m_reply->error() == QNetworkReply::NoError;
}

QByteArray ReplyStream::takeRest()
{
    return m_reply->readAll();
}

void ReplyStream::schedule()
{
    if (m_isScheduled)
        return;
    m_isScheduled = true;
    QMetaObject::invokeMethod(this, &ReplyStream::pump, Qt::QueuedConnection);
}

void ReplyStream::pump()
{
    m_isScheduled = false;
    if (!announceHead() || !handOutPiece())
        return;
    if (m_reply->bytesAvailable() > 0 && m_isHeadAnnounced) {
        schedule();
    } else if (m_reply->isFinished() || m_isStalled) {
        m_stallTimer.stop();
        Q_EMIT ended();
    }
}

/// False when a receiver deleted this object.
bool ReplyStream::announceHead()
{
    if (m_isHeadAnnounced || !hasFinalHead(*m_reply))
        return true;
    m_isHeadAnnounced = true;
    m_stallTimer.start();
    const QPointer<ReplyStream> self(this);
    Q_EMIT headArrived();
    return !self.isNull();
}

/// False when a receiver deleted this object.
bool ReplyStream::handOutPiece()
{
    if (!m_isHeadAnnounced)
        return true;
    m_piece.resize(pieceBytes);
    const qint64 size = m_reply->read(m_piece.data(), m_piece.size());
    if (size <= 0)
        return true;
    m_stallTimer.start();
    const QPointer<ReplyStream> self(this);
    Q_EMIT pieceArrived(m_piece.constData(), size);
    return !self.isNull();
}

void ReplyStream::onStalled()
{
    m_isStalled = true;
    schedule();
}
