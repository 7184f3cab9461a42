#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>
#include <QFile>
#include <QThread>

#include "tests/support/GameSystem.h"

// The program that the tests start as the game. The variable GAME_STEPS holds what it does, step
// after step, separated by "|"; then it ends with code 0. No step waits for more than about 20 s.

template <typename Condition>
static void waitFor(Condition condition)
{
    for (int i = 0; i < 2000 && !condition(); ++i)
        QThread::msleep(10);
}

static void run(const QString &step, const QString &value)
{
    if (step == "args") {
        const QStringList arguments = QCoreApplication::arguments().mid(1);
        std::puts(qUtf8Printable('[' + arguments.join("]\n[") + ']'));
    } else if (step == "flood") {
        std::puts(QByteArray(4 * 1024 * 1024 - 1, '.'));
    } else if (step == "print") {
        std::puts(qUtf8Printable(value));
    } else if (step == "env") {
        QStringList values;
        for (const QString &name : value.split(' '))
            values << qEnvironmentVariable(name.toLatin1(), "-");
        std::puts(qUtf8Printable(values.join(' ')));
    } else if (step == "until") {
        waitFor([&] { return QFile::exists(value); });
    } else if (step == "window") {
        GameSystem::openWindow();
        waitFor([] { return !GameSystem::windowTitle().isEmpty(); });
        std::puts(qUtf8Printable(GameSystem::windowTitle()));
    } else if (step == "crash") {
        std::fflush(stdout);
        GameSystem::crash();
    } else if (step == "exit") {
        std::exit(value.toInt());
    }
}

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList steps = qEnvironmentVariable("GAME_STEPS").split('|');
    for (const QString &step : steps)
        run(step.section(' ', 0, 0), step.section(' ', 1));
}
