#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include <QCoreApplication>
#include <QMetaEnum>
#include <QTemporaryDir>
#include <QThread>

#include "core/launch/LaunchMcProcess.h"
#include "platform/OtherProcesses.h"
#include "support/jsonfskit/FS.h"

/// A system without windows: a game counts as up at once, unless told otherwise.
class WindowlessSystem final : public platform::OtherProcesses
{
public:
    WindowlessSystem() { replace(this); }
    ~WindowlessSystem() override { replace(nullptr); }
    std::optional<quint32> end(qint64 id) const override
    {
        return canEnd ? real.end(id) : std::optional<quint32>(5);
    }
    InputWait waitForInput(qint64) const override
    {
        while (!comesUp && !QThread::currentThread()->isInterruptionRequested())
            QThread::msleep(1);
        return InputWait::Ready;
    }
    bool setWindowTitle(qint64, const QString &) const override { return false; }

    std::atomic_bool canEnd{true}, comesUp{true};

private:
    const OtherProcesses &real = current();
};

/// One game in a temporary game base: the stub Java (tests/support/StubJava.cpp), steered by
/// `steps`, in which "%dir" stands for the game base. Once the game counts as up, the file "go"
/// lies there, outside of the instance directory.
template <typename Game = LaunchMcProcess>
struct GameRun
{
    using State = LaunchMcProcess::State;

    explicit GameRun(QString steps = "until %dir/go", const QByteArray &argumentTemplate = "-x\n",
                     const QString &name = "Instance")
        : instance(dir.filePath(name))
    {
        write(dir.filePath(".minecraft/versions/oriel7/7.bat"), argumentTemplate);
        game->setArgs(Game::ArgJavaPath, QCoreApplication::applicationDirPath() + "/stub-java");
        game->setArgs(Game::ArgGameBase, dir.path());
        game->setArgs(Game::ArgInstanceDir, instance);
        game->setArgs(Game::ArgUserName, "Steve");
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("STUB_STEPS", steps.replace("%dir", dir.path()));
        game->setProcessEnv(environment);
        QObject::connect(game.get(), &Game::processStateChange, game.get(), [this](State state) {
            const char *const key = QMetaEnum::fromType<State>().valueToKey(state);
            states << QString::fromLatin1(key).mid(5);
            if (state == Game::StateRunning)
                give("go");
            if (onState)
                onState(state);
        });
    }
    /// Ends a game that is still waiting.
    ~GameRun() { give("go"); }

    /// Makes the file that a step of the stub waits for.
    void give(const QString &name) const { write(dir.filePath(name), {}); }
    void touch(const QString &name, const QByteArray &data = {}) const { write(file(name), data); }
    static void write(const QString &path, const QByteArray &data)
    {
        if (!FS::writeFile(path, data))
            qFatal("no file");
    }
    QString file(const QString &name) const { return instance + '/' + name; }
    QByteArray output(const QString &name = "game-output.log") const
    {
        return FS::readFile(file(name)).value_or("none").replace("\r\n", "\n");
    }
    QString story() const { return states.join(' '); }

    QTemporaryDir dir;
    QString instance;
    QStringList states;
    std::function<void(State)> onState;
    std::unique_ptr<Game> game = std::make_unique<Game>("7");
};
