#include <future>

#include <QtTest>

#include "base/AtExitManager.h"
#include "base/LazySingleton.h"
#include "base/RivetCoreAtExitManagerUtil.h"

namespace {

QByteArray ended;
QAtomicInt made;

void note(void *letter)
{
    ended += *static_cast<const char *>(letter);
}

char a = 'a', b = 'b', c = 'c';

struct Slow
{
    Slow()
    {
        made.ref();
        QThread::msleep(50);
    }
    ~Slow() { ended += LazySingleton<Slow>::get() == this ? 'S' : '?'; }
};

struct FailsFirst
{
    FailsFirst()
    {
        if (std::exchange(hasFailed, true))
            return;
        waiting = std::async(std::launch::async, &LazySingleton<FailsFirst>::get);
        QThread::msleep(50);
        throw std::bad_alloc();
    }
    static inline bool hasFailed = false;
    static inline std::future<FailsFirst *> waiting;
};

} // namespace

class tst_AtExit : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void callbacksRunNewestFirst()
    {
        {
            const AtExitManager older;
            AtExitManager::RegisterCallback(note, &a);
            {
                const AtExitManager newer;
                AtExitManager::RegisterCallback(note, &b);
                AtExitManager::RegisterCallback(
                    [](void *letter) { AtExitManager::RegisterCallback(note, letter); }, &c);
            }
            QCOMPARE(ended, QByteArray("cb"));
            AtExitManager::ProcessCallbacksNow();
            AtExitManager::RegisterCallback(note, &c);
        }
        QCOMPARE(ended, QByteArray("cbac"));
    }

    void withoutAManagerTheProcessEnds()
    {
        for (const char *operation : {"RegisterCallback", "ProcessCallbacksNow"}) {
            QProcess process;
            process.start(QCoreApplication::applicationFilePath(), {QLatin1String(operation)});
            QVERIFY(process.waitForFinished());
            QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() != 0);
            QVERIFY(process.readAllStandardError().contains(QByteArray("Tried to ") + operation +
                                                            " without an AtExitManager"));
        }
    }

    void threadsThatAskAtOnceGetOneObjectPerManager()
    {
        ended.clear();
        for (int run = 1; run <= 2; ++run) {
            const RivetCoreAtExitManagerUtil core;
            std::vector<std::future<Slow *>> asked;
            for (int i = 0; i < 8; ++i)
                asked.push_back(std::async(std::launch::async, &LazySingleton<Slow>::get));
            QSet<Slow *> objects;
            for (auto &answer : asked)
                objects << answer.get();
            QCOMPARE(objects.size(), 1);
            QCOMPARE(made.loadRelaxed(), run);
        }
        QCOMPARE(ended, QByteArray("SS"));

        const RivetCoreAtExitManagerUtil core;
        QVERIFY_EXCEPTION_THROWN(LazySingleton<FailsFirst>::get(), std::bad_alloc);
        QVERIFY(FailsFirst::waiting.get());
    }
};

int main(int argc, char **argv)
{
    // Run again by the test itself, to see the process end.
    const QByteArray operation = argc == 2 ? argv[1] : "";
    if (!operation.isEmpty()) // Qt on Windows would write where only a debugger sees it.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
            std::fflush(stderr);
        });
    if (operation == "RegisterCallback")
        AtExitManager::RegisterCallback(note, &a);
    if (operation == "ProcessCallbacksNow")
        AtExitManager::ProcessCallbacksNow();
    QCoreApplication application(argc, argv);
    tst_AtExit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_AtExit.moc"
