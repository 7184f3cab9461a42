#include <functional>
#include <future>
#include <memory>

#include <QtTest>

#include "tests/support/TaskJournal.h"

namespace {

class Task : public TaskAbstract
{
public:
    using TaskAbstract::emitFailed;
    using TaskAbstract::emitSucceeded;
    std::function<void(Task &)> work = [](Task &) {};

protected:
    void onTaskRun() override { work(*this); }
};

/// Runs @p work for 0 to @p rounds - 1 on @p count threads that begin each round together.
void runTogether(int count, int rounds, const std::function<void(int thread, int round)> &work)
{
    std::atomic<int> arrivals{0};
    std::vector<std::future<void>> threads;
    for (int thread = 0; thread < count; ++thread) {
        threads.push_back(std::async(std::launch::async, [&, thread] {
            for (int round = 0; round < rounds; ++round) {
                ++arrivals;
                while (arrivals < count * (round + 1))
                    QThread::yieldCurrentThread();
                work(thread, round);
            }
        }));
    }
}

} // namespace

class tst_TaskAbstract : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tellsItsStoryAgainOnEachRun()
    {
        Task task;
        TaskJournal journal(task);
        QVERIFY(!task.isRunning() && !task.isFinished() && !task.successful());
        task.work = [](Task &t) {
            t.setTaskBrief("b");
            t.setStatus("s");
            t.setCurProgress(3, 10);
            t.emitFailed("why");
        };
        task.start();
        QCOMPARE(journal.story(), "brief b, status s, 3/10, failed why, finished 0 why");
        QVERIFY(!task.isRunning() && task.isFinished());

        task.work = [](Task &t) { QTimer::singleShot(0, &t, [&t] { t.emitSucceeded(); }); };
        task.start();
        QVERIFY(task.isRunning() && !task.isFinished() && task.failReason().isEmpty());
        QTRY_VERIFY(task.isFinished());
        task.emitSucceeded();
        task.emitFailed("crash of the running game");
        QCOMPARE(journal.story(), "finished 1 , failed crash of the running game");
        QVERIFY(task.successful() && task.failReason().isEmpty());
    }

    void mayBeDeletedByItsListeners()
    {
        for (const bool onFailed : {false, true}) {
            const QPointer<Task> task(new Task);
            const auto deleteIt = [task] { delete task; };
            if (onFailed)
                connect(task, &TaskAbstract::failed, this, deleteIt);
            else
                connect(task, &TaskAbstract::finished, this, deleteIt);
            task->work = [](Task &t) { t.emitFailed("why"); };
            task->start();
            QVERIFY(task.isNull());
        }
    }

    void signalsFromPoolThreadsArriveOnceAndInOrder()
    {
        constexpr int tasks = 8, steps = 500;
        QStringList expected;
        for (int step = 0; step < steps; ++step)
            expected << QStringLiteral("status %1").arg(step) << QStringLiteral("%1/500").arg(step);
        expected << "failed why"
                 << "finished 0 why";

        std::vector<std::unique_ptr<Task>> all;
        std::vector<std::unique_ptr<TaskJournal>> journals;
        for (int i = 0; i < tasks; ++i) {
            all.push_back(std::make_unique<Task>());
            journals.push_back(std::make_unique<TaskJournal>(*all.back()));
            all.back()->work = [](Task &t) {
                for (int step = 0; step < steps; ++step) {
                    t.setStatus(QString::number(step));
                    t.setCurProgress(quint64(step), steps);
                }
                t.emitFailed("why");
            };
        }
        runTogether(tasks, 1, [&all](int i, int) { all[std::size_t(i)]->start(); });
        for (const auto &journal : journals)
            QVERIFY2(journal->lines.isEmpty(), "delivery waits for this thread's event loop");
        for (const auto &journal : journals)
            QTRY_COMPARE(journal->lines, expected);
    }

    void threadsThatEndATaskAtOnceEndItOnce()
    {
        constexpr int rounds = 3000;
        std::vector<Task> tasks(rounds);
        std::vector<std::atomic<int>> ends(rounds);
        for (std::size_t i = 0; i < rounds; ++i) {
            connect(
                &tasks[i], &TaskAbstract::finished, this, [&ends, i] { ++ends[i]; },
                Qt::DirectConnection);
            tasks[i].start();
        }
        runTogether(2, rounds, [&tasks](int thread, int round) {
            Task &task = tasks[std::size_t(round)];
            thread == 0 ? task.emitSucceeded() : task.emitFailed("why");
        });
        for (std::size_t i = 0; i < rounds; ++i) {
            QCOMPARE(ends[i].load(), 1);
            QCOMPARE(tasks[i].successful(), tasks[i].failReason().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_TaskAbstract)
#include "tst_TaskAbstract.moc"
