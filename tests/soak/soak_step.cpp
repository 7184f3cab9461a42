// A step with 50 resources that is aborted at a random moment, again and again, and then runs to
// its end with the bytes that are there. Usage: soak_step [aborts]; exit code 1 on a miss.

#include <cstdio>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QThreadPool>

#include "core/config/GameResConfig.h"
#include "core/deploy/DeployResRecorder.h"
#include "core/launch/OrAuthServerInstanceInfo.h"
#include "core/launch/ReadyForOtherRes.h"
#include "tests/support/Archives.h"
#include "tests/support/ResManager.h"
#include "tests/support/ServiceWorld.h"
#include "tests/support/TaskJournal.h"
#include "tests/support/TestInstance.h"

namespace {

constexpr uint resourceCount = 50;
constexpr int settlingMs = 40; // what was on the wire at the abort still reaches the server
constexpr int quietMs = 60;
constexpr int mostInFlight = 12; // six records and six files

struct World : ServiceWorld
{
    World()
    {
        info->id = 9;
        info->resTypes = {{ResTypeMods, {}}};
        DeployResRecorder::GetInstance()->init(path("deploy.cache"));
        GameResConfig::GetInstance()->initialize(path("game.config"));
        QByteArray data(60'000, '\0');
        for (uint id = 1; id <= resourceCount; ++id) {
            QRandomGenerator(id).fillRange(reinterpret_cast<quint32 *>(data.data()), 15'000);
            const QByteArray n = QByteArray::number(id);
            const QByteArray archive = archiveOf("zip", {{"f" + n, data}});
            const QByteArray url = server.url("/file" + n).toEncoded();
            server.play("/file" + n, archive, "ETag=\"1\" trickle=20000 pause=2");
            server.play("/resources/info?id=" + n,
                        R"({"resource":{"type":1,"name":"n","id":)" + n + R"(,"url":")" + url +
                            R"("}})",
                        "");
            wholeBytes += archive.size();
            GameResConfig::GetInstance()->setGameInstanceConfig(
                9, {ResourceKey::pack(id, ResTypeMods)}, false);
        }
    }
    qint64 bytesOnDisk() const
    {
        qint64 sum = 0;
        QDirIterator it(path("resources/mods"), QDir::Files);
        while (it.hasNext())
            sum += QFileInfo(it.next()).size();
        return sum;
    }

    std::shared_ptr<TestInstance> instance = std::make_shared<TestInstance>(path("inst"));
    std::shared_ptr<OrAuthServerInstanceInfo> info = std::make_shared<OrAuthServerInstanceInfo>();
    qint64 wholeBytes = 0;
};

void spin(int ms)
{
    bool isOver = false;
    QTimer::singleShot(ms, Qt::PreciseTimer, [&] { isOver = true; });
    await([&] { return isOver; });
}

struct Totals
{
    int midway = 0, faults = 0;
    int mostLate = 0; ///< requests that reached the server behind an abort
    qint64 longestAbortMs = 0;
    double worstRatio = 0;
};

/// Up to @p aborts on one world, each with objects of a new process, until one run has ended.
int abortAgainAndAgain(int aborts, int &wholeMs, Totals &totals)
{
    World world;
    int aborted = 0;
    while (aborted < aborts) {
        ResManager resources;
        ReadyForOtherRes step(world.info, world.instance, &resources, nullptr);
        TaskJournal journal(step);
        QElapsedTimer timer;
        timer.start();
        step.start();
        spin(int(QRandomGenerator::global()->bounded(uint(wholeMs))));
        if (!step.isRunning())
            break;
        ++aborted;
        const int asked = world.server.requests().size();
        timer.start();
        step.abort();
        totals.longestAbortMs = qMax(totals.longestAbortMs, timer.elapsed());
        totals.midway += int(world.server.bodySentBytes("/file") > 0);
        spin(settlingMs);
        QThreadPool::globalInstance()->waitForDone();
        const int requests = world.server.requests().size();
        totals.mostLate = qMax(totals.mostLate, requests - asked);
        const qint64 bytes = world.bytesOnDisk();
        spin(quietMs);
        const bool isQuiet =
            world.server.requests().size() == requests && world.bytesOnDisk() == bytes;
        const QString end = journal.lines.filter("user cancel").join('|');
        if (!isQuiet || end != "failed user cancel|finished 0 user cancel")
            std::printf("fault %d: %s, %s\n", ++totals.faults, isQuiet ? "quiet" : "NOT QUIET",
                        qPrintable(end));
    }
    ResManager resources;
    ReadyForOtherRes step(world.info, world.instance, &resources, nullptr);
    TaskJournal journal(step);
    QElapsedTimer timer;
    timer.start();
    step.start();
    await([&] { return step.isFinished(); });
    if (aborted == 0)
        wholeMs = int(timer.elapsed());
    const double ratio = double(world.server.bodySentBytes("/file")) / double(world.wholeBytes);
    totals.worstRatio = qMax(totals.worstRatio, ratio);
    const int files = QDir(world.path("inst/mods")).entryList(QDir::Files).size();
    if (!step.successful() || files != int(resourceCount))
        std::printf("fault %d: it ends with %d files, %s\n", ++totals.faults, files,
                    qPrintable(journal.lines.last()));
    return aborted;
}

int soak(int, char **)
{
    const int aborts = qMax(1, QCoreApplication::arguments().value(1, "100").toInt());
    Totals totals;
    int wholeMs = 1000;
    abortAgainAndAgain(0, wholeMs, totals);
    int done = 0;
    while (done < aborts)
        done += abortAgainAndAgain(qMin(5, aborts - done), wholeMs, totals);
    std::printf("%d resources, %d ms; aborted %d times, %d of them half-way: %d faults, at most "
                "%.4f times the bytes, %d late requests, %d ms for an abort\n",
                int(resourceCount), wholeMs, done, totals.midway, totals.faults, totals.worstRatio,
                totals.mostLate, int(totals.longestAbortMs));
    const bool isThrifty = totals.worstRatio <= 1.5 && totals.mostLate <= mostInFlight;
    return totals.faults == 0 && totals.midway > 0 && isThrifty ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    return runInSandbox(&soak, argc, argv);
}
