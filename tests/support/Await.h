#pragma once

#include <QCoreApplication>
#include <QTimer>

/// Runs this thread's event loop until @p isDone() says true, or for twenty seconds; returns what
/// it says. Unlike Qt Test's waiting it does not sleep between the events, so a local server on
/// the same thread runs at full speed.
template <typename Condition>
bool await(const Condition &isDone)
{
    QTimer ceiling;
    ceiling.setSingleShot(true);
    ceiling.start(20'000);
    // On Windows events that other threads post do not always end the waiting.
    QTimer look;
    look.start(20);
    while (!isDone() && ceiling.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return isDone();
}
