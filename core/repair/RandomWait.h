#pragma once

#include <chrono>
#include <utility>

#include <QObject>
#include <QRandomGenerator>
#include <QTimer>

namespace RandomWait {

/// Calls @p then on the thread of @p context after 200 to 1199 ms, so that the user sees each
/// repair step. Not if @p context goes before.
template <typename Then>
void callAfter(QObject *context, Then then)
{
    const std::chrono::milliseconds wait(QRandomGenerator::global()->bounded(1000) + 200);
    QTimer::singleShot(wait, context, std::move(then));
}

} // namespace RandomWait
