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
    if (step == QLatin1String("args")) {
        for (const QString &argument : QCoreApplication::arguments().mid(1))
            print('[' + argument.toUtf8() + ']');
    } else if (step == QLatin1String("print")) {
        print(value.toUtf8());
    } else if (step == QLatin1String("flood")) {
        for (int line = 0; line < value.toInt() * 1024; ++line)
            print(QByteArray(1023, '.'));
    } else if (step == QLatin1String("until")) {
        waitFor([&] { return QFile::exists(value); });
    } else if (step == QLatin1String("touch")) {
        QFile(value).open(QIODevice::WriteOnly);
    } else if (step == QLatin1String("child")) {
        qputenv("STUB_STEPS", "until " + value.toUtf8());
        QProcess::startDetached(QCoreApplication::applicationFilePath(), {});
    } else if (step == QLatin1String("window")) {
        print(StubSystem::openWindow() ? "opened" : "no window");
    } else if (step == QLatin1String("title")) {
        waitFor([] { return !StubSystem::windowTitle().isEmpty(); });
        print(StubSystem::windowTitle().toUtf8());
    } else if (step == QLatin1String("crash")) {
        StubSystem::crash();
    } else if (step == QLatin1String("exit")) {
        std::exit(value.toInt());
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList steps = qEnvironmentVariable("STUB_STEPS").split(QLatin1Char('|'));
    for (const QString &step : steps)
        run(step.section(QLatin1Char(' '), 0, 0), step.section(QLatin1Char(' '), 1));
    if (argc != QCoreApplication::arguments().size())
        print("the run time has expanded the arguments");
    return 0;
}
