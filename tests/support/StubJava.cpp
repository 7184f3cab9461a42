#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include "tests/support/StubSystem.h"

// The program that the tests start as the game. The variable STUB_STEPS holds what it does, step
// after step, separated by "|"; then it ends with code 0. "until" and "title" give up after 20 s.

namespace {

void print(const QByteArray &line)
{
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

template <typename Condition>
void waitFor(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 20000)
        QThread::msleep(10);
}

void run(const QString &step, const QString &value)
{
    if (step == "args") {
        for (const QString &argument : QCoreApplication::arguments().mid(1))
            print('[' + argument.toUtf8() + ']');
    } else if (step == "print") {
        print(value.toUtf8());
    } else if (step == "flood") {
        for (int megabyte = 0; megabyte < value.toInt(); ++megabyte)
            print(QByteArray(1024 * 1024 - 1, '.'));
    } else if (step == "until") {
        waitFor([&] { return QFile::exists(value); });
    } else if (step == "touch") {
        QFile(value).open(QIODevice::WriteOnly);
    } else if (step == "child") {
        qputenv("STUB_STEPS", "until " + value.toUtf8());
        QProcess::startDetached(QCoreApplication::applicationFilePath(), {});
    } else if (step == "window") {
        print(StubSystem::openWindow() ? "opened" : "no window");
    } else if (step == "title") {
        waitFor([] { return !StubSystem::windowTitle().isEmpty(); });
        print(StubSystem::windowTitle().toUtf8());
    } else if (step == "crash") {
        StubSystem::crash();
    } else if (step == "exit") {
        std::exit(value.toInt());
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList steps = qEnvironmentVariable("STUB_STEPS").split('|');
    for (const QString &step : steps)
        run(step.section(' ', 0, 0), step.section(' ', 1));
    return 0;
}
