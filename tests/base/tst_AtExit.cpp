#include <QtConcurrent>
#include <QtTest>

#include "base/AtExitManager.h"
#include "base/LazySingleton.h"
#include "base/RivetCoreAtExitManagerUtil.h"

namespace {

QStringList ended;
QAtomicInt made;

void note(void *name)
{
    ended << QString::fromLatin1(static_cast<const char *>(name));
}

char first[] = "first", second[] = "second", late[] = "late";

struct Slow
{
    Slow()
    {
        made.ref();
        QThread::msleep(50);
    }
    ~Slow() { ended << QStringLiteral("Slow"); }
};

struct AsksForItself
{
    ~AsksForItself() { sameAtEnd = LazySingleton<AsksForItself>::get() == this; }
    static inline bool sameAtEnd = false;
};

struct FailsOnce
{
    FailsOnce()
    {
        if (made.fetchAndAddOrdered(1) == 0)
            throw std::bad_alloc();
    }
};

} // namespace

class tst_AtExit : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        ended.clear();
        made = 0;
    }

    void runsNewestFirstAndLetsACallbackRegister()
    {
        {
            const RivetCoreAtExitManagerUtil core;
            AtExitManager::RegisterCallback(note, first);
            AtExitManager::RegisterCallback(note, second);
            AtExitManager::RegisterCallback(
                [](void *name) { AtExitManager::RegisterCallback(note, name); }, late);
        }
        QCOMPARE(ended, QStringList({QStringLiteral("late"), QStringLiteral("second"),
                                     QStringLiteral("first")}));
    }

    void aNewerManagerTakesTheRegistrationsUntilItEnds()
    {
        const AtExitManager older;
        AtExitManager::RegisterCallback(note, first);
        {
            const AtExitManager newer;
            AtExitManager::RegisterCallback(note, second);
            AtExitManager::ProcessCallbacksNow();
            QCOMPARE(ended, QStringList({QStringLiteral("second")}));
        }
        QCOMPARE(ended.size(), 1);
        AtExitManager::ProcessCallbacksNow();
        QCOMPARE(ended, QStringList({QStringLiteral("second"), QStringLiteral("first")}));
    }

    void withoutAManagerTheProcessEnds_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::newRow("RegisterCallback") << QStringLiteral("RegisterCallback");
        QTest::newRow("ProcessCallbacksNow") << QStringLiteral("ProcessCallbacksNow");
    }
    void withoutAManagerTheProcessEnds()
    {
        QFETCH(QString, operation);
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QCoreApplication::applicationFilePath(), {operation});
        QVERIFY(process.waitForFinished());
        QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() != 0);
        const QString line = QStringLiteral("Tried to %1 without an AtExitManager").arg(operation);
        QVERIFY(process.readAll().contains(line.toUtf8()));
    }

    void threadsThatAskAtOnceGetOneObject()
    {
        const RivetCoreAtExitManagerUtil core;
        QSemaphore gate;
        QVector<QFuture<Slow *>> asked;
        QThreadPool pool;
        pool.setMaxThreadCount(8);
        for (int i = 0; i < 8; ++i) {
            asked << QtConcurrent::run(&pool, [&gate] {
                gate.acquire();
                return LazySingleton<Slow>::get();
            });
        }
        gate.release(8);
        QSet<Slow *> objects;
        for (auto &answer : asked)
            objects << answer.result();
        QCOMPARE(objects.size(), 1);
        QVERIFY(!objects.contains(nullptr));
        QCOMPARE(made.loadRelaxed(), 1);
    }

    void aLaterManagerGivesAFreshObject()
    {
        for (int run = 1; run <= 2; ++run) {
            const RivetCoreAtExitManagerUtil core;
            QVERIFY(LazySingleton<Slow>::get());
            QCOMPARE(made.loadRelaxed(), run);
        }
        QCOMPARE(ended.size(), 2);
    }

    void aDestructorFindsItsOwnSingleton()
    {
        {
            const RivetCoreAtExitManagerUtil core;
            LazySingleton<AsksForItself>::get();
        }
        QVERIFY(AsksForItself::sameAtEnd);
    }

    void aFailedConstructionCanBeTriedAgain()
    {
        const RivetCoreAtExitManagerUtil core;
        QVERIFY_EXCEPTION_THROWN(LazySingleton<FailsOnce>::get(), std::bad_alloc);
        QVERIFY(LazySingleton<FailsOnce>::get());
    }
};

int main(int argc, char **argv)
{
    // Run again by the test itself, to see the process end.
    if (argc == 2 && qstrcmp(argv[1], "RegisterCallback") == 0)
        AtExitManager::RegisterCallback(note, first);
    if (argc == 2 && qstrcmp(argv[1], "ProcessCallbacksNow") == 0)
        AtExitManager::ProcessCallbacksNow();
    QCoreApplication application(argc, argv);
    tst_AtExit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_AtExit.moc"
