#include <cstdio>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThreadPool>

#include "bench/Result.h"
#include "core/deploy/DepHistoryFlatFile.h"
#include "core/deploy/DeployTaskWithUnzipMd5.h"
#include "support/jsonfskit/FS.h"

// Deploys archives: rivet-deploy [--time] <history file> <folder> <archive>...
// All at once on the pool, as a launch does; with --time one after another, with a report.

namespace {

class TimedHistory : public DepHistoryFlatFile
{
public:
    void insertRecord(const QString &deployPath, quint64 resKey, const QStringList &files,
                      const QDateTime &time, bool) override
    {
        DepHistoryFlatFile::insertRecord(deployPath, resKey, files, time, false);
        // What the deployment has left for the disk to do would count as part of the save.
        if (isAlone)
            save();
        QElapsedTimer timer;
        timer.start();
        save();
        saveNs = timer.nsecsElapsed();
    }
    bool isAlone = false;
    qint64 saveNs = 0;
};

std::unique_ptr<DeployTask> makeTask(const QStringList &arguments, int index,
                                     IDeploymentHistory &history)
{
    const DTskContext context{arguments.at(index), arguments.at(1), quint64(index), 0, &history};
    auto task = std::make_unique<DeployTaskWithUnzipMd5>(context);
    task->setAutoDelete(false);
    return task;
}

bool hasSucceeded(const DeployTask &task)
{
    if (!task.successful())
        std::fprintf(stderr, "%s\n", qUtf8Printable(task.failReason()));
    return task.successful();
}

int deployAll(const QStringList &arguments)
{
    DepHistoryFlatFile history;
    history.init(arguments.at(0));
    std::vector<std::unique_ptr<DeployTask>> tasks;
    for (int i = 2; i < arguments.size(); ++i) {
        tasks.push_back(makeTask(arguments, i, history));
        QThreadPool::globalInstance()->start(tasks.back().get());
    }
    QThreadPool::globalInstance()->waitForDone();
    bool success = true;
    for (const auto &task : tasks)
        success = hasSucceeded(*task) && success;
    return success ? 0 : 1;
}

/// Milliseconds that the bytes of the history alone take, written as a save writes them.
double writeBytesAgain(const QString &path)
{
    const QByteArray bytes = FS::readFile(path).value_or(QByteArray());
    QElapsedTimer timer;
    timer.start();
    const bool success = FS::writeFile(path % QStringLiteral(".again"), bytes);
    return success ? double(timer.nsecsElapsed()) / 1e6 : 0;
}

int deployTimed(const QStringList &arguments)
{
    TimedHistory history;
    history.init(arguments.at(0));
    double lastSavesMs = 0, bytesMs = 0;
    QElapsedTimer timer;
    timer.start();
    qint64 aside = 0;
    for (int i = 2; i < arguments.size(); ++i) {
        history.isAlone = i >= arguments.size() - 10;
        const auto task = makeTask(arguments, i, history);
        task->start();
        if (!hasSucceeded(*task))
            return 1;
        if (!history.isAlone)
            continue;
        // One by one beside the last ten saves, for a disk has its moods.
        const qint64 begin = timer.nsecsElapsed();
        lastSavesMs += double(history.saveNs) / 1e6;
        bytesMs += writeBytesAgain(arguments.at(0));
        aside += timer.nsecsElapsed() - begin;
    }
    const double all = double(timer.nsecsElapsed() - aside) / 1e6;
    printResult(QStringLiteral("each"), all / (arguments.size() - 2), "ms");
    printResult(QStringLiteral("a save at the end"), lastSavesMs / 10, "ms", "",
                {"its bytes", bytesMs / 10});
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool isTimed = arguments.removeAll(QStringLiteral("--time")) > 0;
    if (arguments.size() < 3) {
        std::fputs("usage: rivet-deploy [--time] <history file> <folder> <archive>...\n", stderr);
        return 2;
    }
    return isTimed ? deployTimed(arguments) : deployAll(arguments);
}
