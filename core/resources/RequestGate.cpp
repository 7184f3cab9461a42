#include "core/resources/RequestGate.h"

#include <algorithm>

#include <QNetworkReply>

#include "base/LazySingleton.h"

namespace {

constexpr int mostInFlight = 6; // what Qt opens to one host

} // namespace

RequestGate::RequestGate() = default;

RequestGate::~RequestGate() = default;

RequestGate *RequestGate::GetInstance()
{
    return LazySingleton<RequestGate>::get();
}

void RequestGate::enqueue(QObject *asker, Send send)
{
    m_waiting.enqueue({asker, std::move(send)});
    letThrough();
}

/// Those that a launch stops withdraw in the order in which they came, so each is found in front.
void RequestGate::withdraw(QObject *asker)
{
    const auto found = std::find_if(m_waiting.begin(), m_waiting.end(),
                                    [&](const Waiting &waiting) { return waiting.asker == asker; });
    if (found != m_waiting.end())
        found->asker = nullptr; // skipped in its turn
    while (!m_waiting.isEmpty() && !m_waiting.head().asker)
        m_waiting.dequeue();
}

void RequestGate::letThrough()
{
    while (m_inFlight.size() < mostInFlight && !m_waiting.isEmpty()) {
        const Waiting next = m_waiting.dequeue();
        if (!next.asker)
            continue;
        QNetworkReply *reply = next.send();
        m_inFlight.insert(reply);
        // An asker that goes deletes its reply unfinished.
        connect(reply, &QNetworkReply::finished, this, [this, reply] { onEnded(reply); });
        connect(reply, &QObject::destroyed, this, [this, reply] { onEnded(reply); });
    }
}

/// On the next turn, so that a launch that is stopped sends nothing for those behind: they withdraw
/// in this turn.
void RequestGate::onEnded(QNetworkReply *reply)
{
    if (m_inFlight.remove(reply))
        QMetaObject::invokeMethod(this, &RequestGate::letThrough, Qt::QueuedConnection);
}
