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

namespace {

constexpr int mebibyte = 1024 * 1024, size = 64 * mebibyte;
const QString path = QStringLiteral("/file");

struct Run
{
    QByteArray body = QByteArray(size, 'b');
    TestServer server;
    QTemporaryDir folder;

    Run() { QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(body.data()), size / 4); }

    /// Runs the program until it ends, or kills it when @p isOver says so.
    template <typename Condition>
    int fetch(const QString &program, const Condition &isOver)
    {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(program, {folder.path(), server.url(path).toString()});
        while (child.state() != QProcess::NotRunning && !isOver())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        child.kill();
        child.waitForFinished();
        return child.exitCode();
    }

    bool report(const char *name, int exitCode)
    {
        const double ratio = double(server.bodySentBytes()) / size;
        const QString file = folder.filePath(QStringLiteral("0"));
        const bool isRight = exitCode == 0 && FS::readFile(file).value_or("") == body;
        std::printf("%-28s %s, %.4f times the bytes, %d requests\n", name,
                    isRight ? "whole" : "NOT WHOLE", ratio, int(server.requests().size()));
        return isRight && ratio <= 1.02;
    }
};

bool closesAndStalls(const QString &program)
{
    Run run;
    TestServer::Script &script = run.server.at(path);
    script.serve(run.body).etag("\"1\"").cutAfter(mebibyte).times(30);
    script.then().stallAfter(mebibyte).then().cutAfter(mebibyte);
    return run.report("closes after every MiB", run.fetch(program, [] { return false; }));
}

bool killed(const QString &program, int kills)
{
    Run run;
    run.server.at(path).serve(run.body).etag("\"1\"").trickle(64 * 1024, 1);
    for (int i = 1; i <= kills; ++i)
        run.fetch(program,
                  [&] { return run.server.bodySentBytes() > qint64(size) * i / (kills + 1); });
    return run.report("killed again and again", run.fetch(program, [] { return false; }));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString program = app.arguments().value(1);
    const int kills = qMax(1, app.arguments().value(2, QStringLiteral("3")).toInt());
    const bool first = killed(program, kills);
    return closesAndStalls(program) && first ? 0 : 1;
}
