// The smallest host: three tasks in a chain, shown as one progress bar.

#include <cstdio>
#include <memory>

#include <QCoreApplication>
#include <QTimer>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/launch/MinecraftLauncher.h"

namespace {

/// Counts to its length, a step each time the event loop comes round.
class CountingTask : public GameLaunchBase
{
public:
    CountingTask(const QString &name, int length) : m_name(name), m_length(length)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { step(); });
    }

protected:
    void onTaskRun() override
    {
        setTaskBrief(m_name);
        m_timer.start(20);
    }

private:
    void step()
    {
        setCurProgress(static_cast<quint64>(++m_done), static_cast<quint64>(m_length));
        if (m_done < m_length)
            return;
        m_timer.stop();
        emitSucceeded();
    }

    QString m_name;
    int m_length;
    int m_done = 0;
    QTimer m_timer;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const RivetCoreAtExitManagerUtil core;

    MinecraftLauncher chain;
    chain.AppendLanuchTask(std::make_shared<CountingTask>(QStringLiteral("check"), 5), 1);
    chain.AppendLanuchTask(std::make_shared<CountingTask>(QStringLiteral("download"), 20), 7);
    chain.AppendLanuchTask(std::make_shared<CountingTask>(QStringLiteral("unpack"), 5), 2);

    QObject::connect(&chain, &TaskAbstract::taskBrief, &chain,
                     [](const QString &brief) { std::printf("%s\n", qPrintable(brief)); });
    QObject::connect(&chain, &TaskAbstract::progress, &chain, [](quint64 current, quint64) {
        std::printf("%4llu %%\n", static_cast<unsigned long long>(current));
    });
    QObject::connect(&chain, &TaskAbstract::finished, &application, [&] {
        std::printf("%s\n", chain.successful() ? "done" : qPrintable(chain.failReason()));
        QCoreApplication::exit(chain.successful() ? 0 : 1);
    });
    chain.start();
    return QCoreApplication::exec();
}
