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

/// Stopping thousands takes one look at the queue for each; a null asker is skipped in its turn.
void RequestGate::withdraw(QObject *asker)
{
    const auto found = std::find_if(m_waiting.begin(), m_waiting.end(),
                                    [&](const Waiting &waiting) { return waiting.asker == asker; });
    if (found != m_waiting.end())
        found->asker = nullptr;
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

void RequestGate::onEnded(QNetworkReply *reply)
{
    if (m_inFlight.remove(reply))
        letThrough();
}
