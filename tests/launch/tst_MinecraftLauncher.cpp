#include <functional>

#include <QtTest>

#include "core/launch/MinecraftLauncher.h"
#include "tests/support/LogCapture.h"

namespace {

class Step : public GameLaunchBase
{
    Q_OBJECT
public:
    using GameLaunchBase::emitFailed;
    using GameLaunchBase::emitSucceeded;

    explicit Step(std::function<void(Step &)> work) : m_work(std::move(work)) {}
    bool canAbort() const override { return abortable; }
    bool abort() override
    {
        ++aborts;
        return abortable;
    }
    bool abortable = true;
    int aborts = 0;
    int starts = 0;

protected:
    void onTaskRun() override
    {
        ++starts;
        m_work(*this);
    }

private:
    std::function<void(Step &)> m_work;
};

std::shared_ptr<Step> step(std::function<void(Step &)> work = [](Step &) {})
{
    return std::make_shared<Step>(std::move(work));
}

void succeed(Step &s)
{
    s.emitSucceeded();
}

void succeedLater(Step &s)
{
    QTimer::singleShot(0, &s, [&s] { s.emitSucceeded(); });
}

void fail(Step &s)
{
    s.setError(GameLaunchBase::ErrTampered);
    s.emitFailed(QStringLiteral("why"));
}

/// A chain with a journal of its signals, in order.
struct Chain : MinecraftLauncher
{
    Chain()
    {
        const auto text = [this](const char *kind) {
            return [this, kind](const QString &t) {
                journal << QStringLiteral("%1 %2").arg(QString::fromLatin1(kind), t);
            };
        };
        connect(this, &TaskAbstract::status, this, text("status"));
        connect(this, &TaskAbstract::taskBrief, this, text("brief"));
        connect(this, &TaskAbstract::failed, this, text("failed"));
        connect(this, &GameLaunchBase::error, this,
                [this](Error number) { journal << QStringLiteral("error %1").arg(number); });
        connect(this, &TaskAbstract::progress, this, [this](quint64 current, quint64 total) {
            journal << QStringLiteral("%1/%2").arg(current).arg(total);
        });
        connect(this, &TaskAbstract::finished, this, [this] {
            journal << QStringLiteral("finished %1 %2").arg(successful()).arg(failReason());
        });
    }
    QString story() { return QStringList(std::exchange(journal, {})).join(QStringLiteral(", ")); }
    QStringList journal;
};

} // namespace

class tst_MinecraftLauncher : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void anEmptyChainSucceedsAtOnce()
    {
        Chain chain;
        QVERIFY(chain.abort() && chain.canAbort());
        chain.start();
        QCOMPARE(chain.story(), QStringLiteral("finished 1 "));
    }

    void aNullTaskIsLoggedAndLeftOut()
    {
        const LogCapture log;
        Chain chain;
        chain.AppendLanuchTask(nullptr, 50);
        QVERIFY(log.has(QtCriticalMsg,
                        QStringLiteral("launch task have not been created, null object.")));
        const auto only = step();
        chain.AppendLanuchTask(only, 7);
        chain.start();
        only->setCurProgress(1, 2);
        QCOMPARE(chain.story(), QStringLiteral("1/100, 50/100"));
    }

    void runsTasksInOrder_data()
    {
        QTest::addColumn<QString>("ends");
        QTest::addColumn<QString>("story");
        QTest::newRow("all at once")
            << QStringLiteral("nnn")
            << QStringLiteral("brief 0, brief 1, brief 2, finished 1 , 1/100");
        QTest::newRow("all later")
            << QStringLiteral("lll")
            << QStringLiteral("brief 0, 1/100, brief 1, brief 2, finished 1 ");
        QTest::newRow("mixed") << QStringLiteral("nlnn")
                               << QStringLiteral(
                                      "brief 0, brief 1, 1/100, brief 2, brief 3, finished 1 ");
        QTest::newRow("the second fails")
            << QStringLiteral("lfn")
            << QStringLiteral(
                   "brief 0, 1/100, brief 1, error 13, failed why, failed why, finished 0 why");
        QTest::newRow("the first fails")
            << QStringLiteral("fl")
            << QStringLiteral("brief 0, error 13, failed why, failed why, finished 0 why, 1/100");
    }
    void runsTasksInOrder()
    {
        QFETCH(QString, ends);
        Chain chain;
        for (int i = 0; i < ends.size(); ++i) {
            const QChar end = ends.at(i);
            chain.AppendLanuchTask(step([i, end](Step &s) {
                                       s.setTaskBrief(QString::number(i));
                                       end == QLatin1Char('f')   ? fail(s)
                                       : end == QLatin1Char('l') ? succeedLater(s)
                                                                 : succeed(s);
                                   }),
                                   1);
        }
        chain.start();
        QTRY_VERIFY(chain.isFinished());
        QTEST(chain.story(), "story");
    }

    void progressIsInSharesOfTheWhole_data()
    {
        QTest::addColumn<QVector<int>>("weights");
        QTest::addColumn<QString>("halves"); // the bar at the half and at the end of each task
        QTest::newRow("thirds") << QVector<int>{1, 1, 1}
                                << QStringLiteral("16/100, 33/100, 49/100, 66/100, 82/100, 99/100");
        QTest::newRow("uneven") << QVector<int>{10, 70, 20}
                                << QStringLiteral("5/100, 10/100, 45/100, 80/100, 90/100, 100/100");
        QTest::newRow("greatest") << QVector<int>{65535, 65535}
                                  << QStringLiteral("25/100, 50/100, 75/100, 100/100");
        QTest::newRow("zeros") << QVector<int>{0, 0} << QString();
    }
    void progressIsInSharesOfTheWhole()
    {
        QFETCH(QVector<int>, weights);
        Chain chain;
        QVector<std::shared_ptr<Step>> steps;
        for (const int weight : weights) {
            steps << step();
            chain.AppendLanuchTask(steps.last(), static_cast<quint16>(weight));
        }
        steps.first()->setCurProgress(1, 2);
        QCOMPARE(chain.story(), QString());
        chain.start();
        QCOMPARE(chain.story(), QStringLiteral("1/100"));
        for (const auto &running : steps) {
            running->setCurProgress(7, 0);
            running->setCurProgress(Q_UINT64_C(1) << 62, Q_UINT64_C(1) << 63);
            running->setCurProgress(5, 5);
            running->emitSucceeded();
        }
        const QString expected =
            *static_cast<const QString *>(QTest::qData("halves", QMetaType::QString));
        QCOMPARE(chain.story(), (expected.isEmpty() ? expected : expected + QStringLiteral(", ")) +
                                    QStringLiteral("finished 1 "));
    }

    void resetRunsTheSameTasksAgain()
    {
        Chain chain;
        const auto first = step(succeed), second = step();
        chain.AppendLanuchTask(first, 2);
        chain.AppendLanuchTask(second, 1);
        chain.start();
        second->emitSucceeded();
        chain.story();
        chain.Reset();
        chain.start();
        // 2 and 1 gave 66 and 33; of 99, they give the same once more.
        second->setCurProgress(1, 1);
        second->emitSucceeded();
        QCOMPARE(chain.story(), QStringLiteral("1/100, 99/100, finished 1 "));
        QCOMPARE(first->starts + second->starts, 4);
    }

    void abortGoesToTheRunningTask()
    {
        Chain chain;
        const auto first = step(), second = step();
        chain.AppendLanuchTask(first, 1);
        chain.AppendLanuchTask(second, 1);
        first->abortable = false;
        QVERIFY(chain.canAbort() && chain.abort());
        QCOMPARE(first->aborts, 0);
        chain.start();
        QVERIFY(!chain.canAbort() && !chain.abort());
        first->emitSucceeded();
        QVERIFY(chain.canAbort() && chain.abort());
        second->emitSucceeded();
        QVERIFY2(chain.abort(), "the task that has ended hears it");
        QCOMPARE(first->aborts, 1);
        QCOMPARE(second->aborts, 2);
    }

    void aTaskReportsOnlyToItsLastChain()
    {
        const auto shared = step();
        Chain older, newer;
        older.AppendLanuchTask(shared, 1);
        newer.AppendLanuchTask(shared, 1);
        newer.start();
        shared->setStatus(QStringLiteral("here"));
        shared->emitSucceeded();
        shared->setError(GameLaunchBase::ErrGameCrashed);
        shared->emitFailed(QStringLiteral("late crash"));
        QCOMPARE(older.story(), QString());
        QCOMPARE(newer.story(), QStringLiteral("1/100, status here, finished 1 , error 7, "
                                               "failed late crash"));
    }

    void aListenerMayDeleteTheChain_data()
    {
        QTest::addColumn<bool>("last");
        QTest::newRow("at the start") << false;
        QTest::newRow("at the end") << true;
    }
    void aListenerMayDeleteTheChain()
    {
        QFETCH(bool, last);
        auto *chain = new MinecraftLauncher;
        QPointer<MinecraftLauncher> watch(chain);
        chain->AppendLanuchTask(step(succeed), 1);
        chain->AppendLanuchTask(step(succeed), 1);
        if (last)
            connect(chain, &TaskAbstract::finished, this, [chain] { delete chain; });
        else
            chain->AppendLanuchTask(step([chain](Step &) { delete chain; }), 1);
        chain->start();
        QVERIFY(watch.isNull());
    }
};

QTEST_GUILESS_MAIN(tst_MinecraftLauncher)
#include "tst_MinecraftLauncher.moc"
