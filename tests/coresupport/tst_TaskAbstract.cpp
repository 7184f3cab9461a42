#include <memory>

#include <QSignalSpy>
#include <QThreadPool>
#include <QtTest>

#include "support/coresupport/TaskAbstract.h"

namespace {

class Task : public TaskAbstract
{
    Q_OBJECT
public:
    using TaskAbstract::emitFailed;
    using TaskAbstract::emitSucceeded;
    std::function<void(Task &)> work = [](Task &) {};

protected:
    void onTaskRun() override { work(*this); }
};

/// Writes down each signal of a task as it arrives, with what the task then says of itself.
class Journal : public QObject
{
    Q_OBJECT
public:
    explicit Journal(Task &task) : m_task(task)
    {
        connect(&task, SIGNAL(status(QString)), this, SLOT(onText(QString)));
        connect(&task, SIGNAL(taskBrief(QString)), this, SLOT(onText(QString)));
        connect(&task, SIGNAL(failed(QString)), this, SLOT(onText(QString)));
        connect(&task, SIGNAL(finished()), this, SLOT(onFinished()));
        connect(&task, SIGNAL(progress(quint64, quint64)), this,
                SLOT(onProgress(quint64, quint64)));
    }
    QStringList lines;

private Q_SLOTS:
    void onText(const QString &text) { lines << text; }
    void onProgress(quint64 current, quint64 total)
    {
        lines << QStringLiteral("%1/%2").arg(current).arg(total);
    }
    void onFinished()
    {
        lines << QStringLiteral("finished %1 %2").arg(m_task.successful()).arg(m_task.failReason());
    }

private:
    Task &m_task;
};

QStringList list(std::initializer_list<const char *> texts)
{
    QStringList result;
    for (const char *text : texts)
        result << QString::fromLatin1(text);
    return result;
}

/// Runs @p work on @p count pool threads that start together and waits for their end.
void runTogether(int count, const std::function<void(int)> &work)
{
    QThreadPool pool;
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
    void tellsItsStory()
    {
        Task task;
        Journal journal(task);
        QVERIFY(!task.isRunning() && !task.isFinished() && !task.successful());
        task.work = [](Task &t) {
            QVERIFY(t.isRunning() && !t.isFinished());
            t.setTaskBrief(QStringLiteral("brief"));
            t.setStatus(QStringLiteral("status"));
            t.setCurProgress(3, 10);
            t.emitFailed(QStringLiteral("reason"));
        };
        task.start();
        QCOMPARE(journal.lines, list({"brief", "status", "3/10", "reason", "finished 0 reason"}));
        QVERIFY(!task.isRunning() && task.isFinished() && !task.successful());

        // Again, with an end that comes later.
        journal.lines.clear();
        task.work = [](Task &t) { QTimer::singleShot(0, &t, [&t] { t.emitSucceeded(); }); };
        task.start();
        QVERIFY(task.isRunning() && !task.isFinished() && task.failReason().isEmpty());
        QTRY_COMPARE(journal.lines, list({"finished 1 "}));
    }

    void endsOncePerRun()
    {
        Task task;
        Journal journal(task);
        task.start();
        task.emitSucceeded();
        task.emitSucceeded();
        task.emitFailed(QStringLiteral("crash of the running game"));
        QCOMPARE(journal.lines, list({"finished 1 ", "crash of the running game"}));
        QVERIFY(task.successful() && task.failReason().isEmpty());
    }

    void mayBeDeletedByItsListeners_data()
    {
        QTest::addColumn<bool>("onFailed");
        QTest::newRow("on finished") << false;
        QTest::newRow("on failed") << true;
    }
    void mayBeDeletedByItsListeners()
    {
        QFETCH(bool, onFailed);
        auto *task = new Task;
        QSignalSpy gone(task, &QObject::destroyed);
        const auto deleteIt = [task] { delete task; };
        if (onFailed)
            connect(task, &TaskAbstract::failed, this, deleteIt);
        else
            connect(task, &TaskAbstract::finished, this, deleteIt);
        task->work = [](Task &t) { t.emitFailed(QStringLiteral("reason")); };
        task->start();
        QCOMPARE(gone.size(), 1);
    }

    void signalsFromPoolThreadsArriveOnceAndInOrder()
    {
        constexpr int tasks = 8, steps = 500;
        QStringList expected;
        for (int step = 0; step < steps; ++step)
            expected << QString::number(step) << QStringLiteral("%1/%2").arg(step).arg(steps);
        expected << QStringLiteral("broken") << QStringLiteral("finished 0 broken");

        std::vector<std::unique_ptr<Task>> all;
        std::vector<std::unique_ptr<Journal>> journals;
        for (int i = 0; i < tasks; ++i) {
            all.push_back(std::make_unique<Task>());
            journals.push_back(std::make_unique<Journal>(*all.back()));
            all.back()->work = [](Task &t) {
                for (int step = 0; step < steps; ++step) {
                    t.setStatus(QString::number(step));
                    t.setCurProgress(quint64(step), steps);
                }
                t.emitFailed(QStringLiteral("broken"));
            };
        }
        runTogether(tasks, [&all](int i) { all[std::size_t(i)]->start(); });
        for (const auto &journal : journals)
            QVERIFY2(journal->lines.isEmpty(), "delivery waits for this thread's event loop");
        for (const auto &journal : journals) {
            QTRY_COMPARE(journal->lines.size(), expected.size());
            QCOMPARE(journal->lines, expected);
        }
    }

    void threadsThatEndATaskAtOnceEndItOnce()
    {
        for (int round = 0; round < 500; ++round) {
            Task task;
            std::atomic<int> ends{0};
            connect(
                &task, &TaskAbstract::finished, &task, [&] { ++ends; }, Qt::DirectConnection);
            task.start();
            runTogether(3, [&task](int i) {
                if (i == 0)
                    task.emitSucceeded();
                else
                    task.emitFailed(QString::number(i));
            });
            QCOMPARE(ends.load(), 1);
            QCOMPARE(task.successful(), task.failReason().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_TaskAbstract)
#include "tst_TaskAbstract.moc"
