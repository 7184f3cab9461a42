#include <functional>

#include <QtTest>

#include "core/launch/MinecraftLauncher.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TaskJournal.h"

namespace {

struct Step : GameLaunchBase
{
    using GameLaunchBase::emitFailed;
    using GameLaunchBase::emitSucceeded;

    bool canAbort() const override { return abortable; }
    bool abort() override { return ++aborts && abortable; }
    void onTaskRun() override { work(); }

    std::function<void()> work;
    bool abortable = true;
    int aborts = 0;
};

/// A chain with a journal, and steps that end as told: "n" at once, "l" later, "f" failing, "-"
/// when the test ends them.
struct Chain
{
    explicit Chain(const QByteArray &ends, const QVector<int> &weights = {})
    {
        QObject::connect(&chain, &GameLaunchBase::error, &journal,
                         [this](int number) { journal.lines << QString("error %1").arg(number); });
        for (int i = 0; i < ends.size(); ++i) {
            steps << std::make_shared<Step>();
            Step *step = steps.last().get();
            step->work = [i, step, end = ends.at(i)] {
                step->setTaskBrief(QString::number(i));
                if (end == 'n')
                    step->emitSucceeded();
                if (end == 'l')
                    QTimer::singleShot(0, step, [step] { step->emitSucceeded(); });
                if (end == 'f')
                    step->setError(GameLaunchBase::ErrTampered), step->emitFailed("why");
            };
            chain.AppendLanuchTask(steps.last(), quint16(weights.value(i, 1)));
        }
    }

    MinecraftLauncher chain;
    TaskJournal journal{chain};
    QVector<std::shared_ptr<Step>> steps;
};

} // namespace

class tst_MinecraftLauncher : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tasksRunInOrder()
    {
        const QPair<const char *, const char *> rows[] = {
            {"", "finished 1 "},
            {"nnn", "brief 0, brief 1, brief 2, finished 1 , 1/100"},
            {"lll", "brief 0, 1/100, brief 1, brief 2, finished 1 "},
            {"nlnn", "brief 0, brief 1, 1/100, brief 2, brief 3, finished 1 "},
            {"lfn", "brief 0, 1/100, brief 1, error 13, failed why, failed why, finished 0 why"},
            {"fl", "brief 0, error 13, failed why, failed why, finished 0 why, 1/100"},
        };
        for (const auto &row : rows) {
            Chain c(row.first);
            c.chain.start();
            QTRY_VERIFY(c.chain.isFinished());
            QCOMPARE(c.journal.story(), row.second);
        }
    }

    void progressIsInSharesOfTheWhole()
    {
        const QPair<QVector<int>, const char *> rows[] = {
            {{7}, "50/100, 100/100"},
            {{1, 1, 1}, "16/100, 33/100, 49/100, 66/100, 82/100, 99/100"},
            {{10, 70, 20}, "5/100, 10/100, 45/100, 80/100, 90/100, 100/100"},
            {{65535, 65535}, "25/100, 50/100, 75/100, 100/100"},
            {{0, 0}, ""},
        };
        for (const auto &row : rows) {
            const LogCapture log;
            Chain c(QByteArray(row.first.size(), '-'), row.first);
            c.chain.AppendLanuchTask(nullptr, 50);
            QVERIFY(log.has(QtCriticalMsg, "launch task have not been created, null object."));
            c.steps.first()->setCurProgress(1, 2);
            QCOMPARE(c.journal.story(), "");
            c.chain.start();
            for (const auto &running : qAsConst(c.steps)) {
                running->setCurProgress(7, 0);
                running->setCurProgress(Q_UINT64_C(1) << 62, Q_UINT64_C(1) << 63);
                running->setCurProgress(5, 5);
                running->emitSucceeded();
            }
            const QStringList bar = c.journal.lines.filter("/100").mid(1);
            QCOMPARE(bar.join(", "), row.second);
        }
    }

    void abortGoesToTheRunningTask()
    {
        Chain c("--");
        c.steps[0]->abortable = false;
        QVERIFY(c.chain.canAbort() && c.chain.abort());
        QCOMPARE(c.steps[0]->aborts, 0);
        c.chain.start();
        QVERIFY(!c.chain.canAbort() && !c.chain.abort());
        c.steps[0]->emitSucceeded();
        c.steps[1]->emitSucceeded();
        QVERIFY2(c.chain.abort(), "the task that has ended hears it");
        QVERIFY(c.steps[0]->aborts == 1 && c.steps[1]->aborts == 1);
        c.chain.Reset();
        QVERIFY(c.chain.abort() && c.steps[1]->aborts == 1);
        c.journal.story();
        c.chain.start();
        QCOMPARE(c.journal.story(), "brief 0, 1/100");
    }

    void aTaskReportsOnlyToItsLastChain()
    {
        Chain older("-"), newer("");
        QSignalSpy byName(&newer.chain, SIGNAL(error(GameLaunchBase::Error)));
        newer.chain.AppendLanuchTask(older.steps[0], 1);
        newer.chain.start();
        older.steps[0]->setStatus("here");
        older.steps[0]->emitSucceeded();
        older.steps[0]->setError(GameLaunchBase::ErrGameCrashed);
        older.steps[0]->emitFailed("late");
        QCOMPARE(byName.size(), 1);
        QCOMPARE(older.steps[0]->lastError(), GameLaunchBase::ErrGameCrashed);
        QCOMPARE(older.journal.story(), "");
        QCOMPARE(newer.journal.story(),
                 "brief 0, 1/100, status here, finished 1 , error 7, failed late");
    }

    void aListenerMayDeleteTheChain()
    {
        for (const bool atTheEnd : {false, true}) {
            auto *c = new Chain("nnn");
            const QPointer<MinecraftLauncher> watch(&c->chain);
            const auto deleteIt = [c] { delete c; };
            if (atTheEnd)
                connect(&c->chain, &TaskAbstract::finished, this, deleteIt);
            else
                connect(c->steps[1].get(), &TaskAbstract::taskBrief, this, deleteIt);
            c->chain.start();
            QVERIFY(watch.isNull());
        }
    }
};

QTEST_GUILESS_MAIN(tst_MinecraftLauncher)
#include "tst_MinecraftLauncher.moc"
