#include <functional>
#include <memory>

#include <QThreadPool>
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

/// Runs @p work on @p count threads of @p pool that start together and waits for their end.
void runTogether(QThreadPool &pool, int count, const std::function<void(int)> &work)
{
    pool.setMaxThreadCount(count);
    std::atomic<int> waiting{count};
    for (int i = 0; i < count; ++i) {
        pool.start([&waiting, &work, i] {
            --waiting;
            while (waiting > 0)
                QThread::yieldCurrentThread();
            work(i);
        });
    }
    pool.waitForDone();
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
            auto *task = new Task;
            const QPointer<Task> watch(task);
            if (onFailed)
                connect(task, &TaskAbstract::failed, this, [task] { delete task; });
            else
                connect(task, &TaskAbstract::finished, this, [task] { delete task; });
            task->work = [](Task &t) { t.emitFailed("why"); };
            task->start();
            QVERIFY(watch.isNull());
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
        QThreadPool pool;
        runTogether(pool, tasks, [&all](int i) { all[std::size_t(i)]->start(); });
        for (const auto &journal : journals)
            QVERIFY2(journal->lines.isEmpty(), "delivery waits for this thread's event loop");
        for (const auto &journal : journals)
            QTRY_COMPARE(journal->lines, expected);
    }

    void threadsThatEndATaskAtOnceEndItOnce()
    {
        QThreadPool pool;
        for (int round = 0; round < 3000; ++round) {
            Task task;
            std::atomic<int> ends{0};
            connect(
                &task, &TaskAbstract::finished, &task, [&] { ++ends; }, Qt::DirectConnection);
            task.start();
            runTogether(pool, 3, [&task](int i) {
                i == 0 ? task.emitSucceeded() : task.emitFailed(QString::number(i));
            });
            QCOMPARE(ends.load(), 1);
            QCOMPARE(task.successful(), task.failReason().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_TaskAbstract)
#include "tst_TaskAbstract.moc"
