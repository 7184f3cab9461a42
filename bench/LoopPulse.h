#pragma once

#include <QElapsedTimer>
#include <QTimer>

/// Measures how long the event loop of its thread stands still at most: its timer fires on every
/// turn of the loop.
class LoopPulse
{
public:
    void start()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_longestNs = qMax(m_longestNs, m_sinceBeat.nsecsElapsed());
            m_sinceBeat.start();
        });
        m_timer.start(0);
        m_sinceBeat.start();
    }

    double longestTurnMs() const { return double(m_longestNs) / 1e6; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    qint64 m_longestNs = 0;
};
