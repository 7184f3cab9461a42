// The long forms of the download tests, with the times that users see: a file of 64 MiB from a
// server that closes after every MiB and stalls once, then the same file by a process that is
// killed again and again. Usage: soak_download <rivet-fetch> [kills]; exit code 1 on a miss.

#include <cstdio>

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "support/jsonfskit/FS.h"
#include "tests/support/TestServer.h"

static bool run(const char *name, const QString &program, const QByteArray &script, int kills)
{
    constexpr int size = 64 * 1024 * 1024;
    QByteArray body(size, 'b');
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(body.data()), size / 4);
    TestServer server;
    server.play("/file", body, "ETag=\"1\" " + script);
    QTemporaryDir folder;
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    for (int i = 1; i <= kills + 1; ++i) {
        const qint64 enough = i <= kills ? qint64(size) * i / (kills + 1) : 2 * qint64(size);
        child.start(program, {folder.path(), server.url("/file").toString()});
        while (child.state() != QProcess::NotRunning && server.bodySentBytes() <= enough)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        child.kill();
        child.waitForFinished();
    }
    const double ratio = double(server.bodySentBytes()) / size;
    const bool isWhole =
        child.exitCode() == 0 && FS::readFile(folder.filePath("0")).value_or("") == body;
    std::printf("%-28s %s, %.4f times the bytes, %d requests\n", name,
                isWhole ? "whole" : "NOT WHOLE", ratio, int(server.requests().size()));
    return isWhole && ratio <= 1.02;
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString program = app.arguments().value(1);
    const int kills = qMax(1, app.arguments().value(2, "3").toInt());
    const bool isRight = run("killed again and again", program, "trickle=65536", kills);
    const char *faults = "cut=1048576 x=30 then stall=1048576 then cut=1048576";
    return run("closes after every MiB", program, faults, 0) && isRight ? 0 : 1;
}
