// Five resources, deployed by a process that is killed at a random moment and then run to its end,
// again and again. Each time they have to be complete, and nothing else may be gone or left over.
// Usage: soak_deploy <rivet-deploy> [kills]; exit code 1 on a miss.

#include <cstdio>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

#include "core/deploy/DepHistoryFlatFile.h"
#include "tests/support/Archives.h"
#include "tests/support/TestFiles.h"

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const int kills = qMax(1, app.arguments().value(2, "200").toInt());
    const QTemporaryDir dir;
    const QString game = dir.filePath("game"), cache = dir.filePath("deploy.cache");
    makeFiles(game, {"mods/mine.jar", "mods/other.jar", "options.txt", "saves/world/level.dat"});
    {
        DepHistoryFlatFile history;
        history.init(cache);
        history.insertRecord(game, 99, {"mods/other.jar"}, QDateTime::currentDateTime(), true);
    }

    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    QElapsedTimer timer;
    qint64 wholeMs = 100;
    int killed = 0, midway = 0, faults = 0;
    while (killed < kills) {
        QStringList arguments{cache, game};
        QString expected;
        for (int i = 0; i < 5; ++i) {
            Items items;
            for (int k = 10; k < 50; ++k) {
                items << Item{QString("r%1/%2").arg(i).arg(k).toUtf8(),
                              QByteArray(20000, char('a' + killed % 26)) + QByteArray::number(k)};
                expected += ' ' + items.last().name + '=' + items.last().data;
            }
            expected.replace(QString(" r%1/10=").arg(i), QString(" r%1 r%1/10=").arg(i));
            arguments << dir.filePath(QString::number(i));
            QFile archive(arguments.last());
            // Not newer than the deployment, so that the history decides what is to be done.
            if (!archive.open(QIODevice::WriteOnly) || archive.write(archiveOf("zip", items)) < 0 ||
                !archive.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                     QFileDevice::FileModificationTime))
                return 1;
            QFile::remove(game + QString("/r%1/20").arg(i));
        }
        child.start(app.arguments().value(1), arguments);
        child.waitForStarted();
        QThread::usleep(QRandomGenerator::global()->bounded(uint(wholeMs * 1000)));
        child.kill();
        child.waitForFinished();
        killed += child.exitStatus() == QProcess::CrashExit ? 1 : 0;
        midway += treeOf(game).contains('{') ? 1 : 0;

        timer.start();
        child.start(app.arguments().value(1), arguments);
        child.waitForFinished();
        wholeMs = timer.elapsed();
        DepHistoryFlatFile history;
        history.init(cache);
        const QString tree = "mods mods/mine.jar mods/other.jar options.txt" + expected +
                             " saves saves/world saves/world/level.dat";
        if (child.exitCode() != 0 || treeOf(game) != tree ||
            history.getDeployResInDeployFolder(game).size() != 6)
            std::printf("fault %d behind kill %d\n", ++faults, killed);
    }
    std::printf("deployment killed %d times, %d times half-way: %d faults\n", killed, midway,
                faults);
    return faults == 0 && midway > 0 ? 0 : 1;
}
