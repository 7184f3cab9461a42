#include "core/launch/MinecraftLauncher.h"

#include <algorithm>
#include <numeric>

#include <QPointer>

MinecraftLauncher::MinecraftLauncher(QObject *parent) : GameLaunchBase(parent) {}

MinecraftLauncher::~MinecraftLauncher() = default;

void MinecraftLauncher::AppendLanuchTask(std::shared_ptr<GameLaunchBase> task, quint16 weight)
{
    if (!task) {
        qCritical("launch task have not been created, null object.");
        return;
    }
    m_tasks.append(task);
    m_weights.append(weight);

    // A task that belonged to an earlier chain reports only here.
    GameLaunchBase *const sender = task.get();
    QObject::disconnect(sender, nullptr, nullptr, nullptr);
    connect(sender, &TaskAbstract::finished, this, &MinecraftLauncher::onOneTaskFinished);
    connect(sender, &TaskAbstract::status, this, &TaskAbstract::setStatus);
    connect(sender, &TaskAbstract::failed, this, &TaskAbstract::failed);
    connect(sender, &TaskAbstract::taskBrief, this, &TaskAbstract::setTaskBrief);
    connect(sender, &GameLaunchBase::error, this, &GameLaunchBase::error);
    connect(sender, &TaskAbstract::progress, this, &MinecraftLauncher::onTaskProgress);
}

void MinecraftLauncher::Reset()
{
    m_current = -1;
}

bool MinecraftLauncher::canAbort() const
{
    const GameLaunchBase *const task = currentTask();
    return !task || task->canAbort();
}

bool MinecraftLauncher::abort()
{
    // The task may end at once, and a listener of that end may delete the chain.
    const std::shared_ptr<GameLaunchBase> task = m_tasks.value(m_current);
    return !task || task->abort();
}

void MinecraftLauncher::onTaskRun()
{
    if (m_tasks.isEmpty()) {
        emitSucceeded();
        return;
    }
    workOutShares();
    onOneTaskFinished();
}

void MinecraftLauncher::onOneTaskFinished()
{
    if (m_current == -1) {
        m_current = 0;
        const QPointer<MinecraftLauncher> self(this);
        startCurrent();
        if (self)
            setCurProgress(1, 100);
        return;
    }

    const GameLaunchBase *const task = currentTask();
    if (!task->successful()) {
        emitFailed(task->failReason());
    } else if (m_current == m_tasks.size() - 1) {
        emitSucceeded();
    } else {
        ++m_current;
        startCurrent();
    }
}

/// Null before the first task.
GameLaunchBase *MinecraftLauncher::currentTask() const
{
    return m_tasks.value(m_current).get();
}

void MinecraftLauncher::workOutShares()
{
    const quint64 sum = std::accumulate(m_weights.begin(), m_weights.end(), quint64(0));
    m_hasShares = true;
    if (m_weights.size() != m_tasks.size()) {
        const quint16 share = static_cast<quint16>(100.0 / m_tasks.size());
        m_weights = QVector<quint16>(m_tasks.size(), share).toList();
    } else if (sum > 0) {
        for (quint16 &weight : m_weights)
            weight = static_cast<quint16>(100.0 * weight / sum);
    } else {
        m_hasShares = false;
    }
}

void MinecraftLauncher::startCurrent()
{
    // Kept alive on its own: a listener of its end may delete the chain before start() returns.
    const std::shared_ptr<GameLaunchBase> task = m_tasks.at(m_current);
    task->start();
}

void MinecraftLauncher::onTaskProgress(quint64 current, quint64 total)
{
    if (m_current < 0 || m_current >= m_weights.size() || m_current >= m_tasks.size() ||
        total == 0 || !m_hasShares)
        return;
    // A double holds what would not fit behind the cast.
    constexpr double most = 9e18;
    const quint64 done =
        std::accumulate(m_weights.begin(), m_weights.begin() + m_current, quint64(0));
    const double share = m_weights.at(m_current) * (static_cast<double>(current) / total);
    setCurProgress(static_cast<quint64>(std::min(done + share, most)), 100);
}
