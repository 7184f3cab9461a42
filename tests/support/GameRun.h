#pragma once

#include <atomic>
#include <functional>

#include <QtTest>

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

/// One game in a temporary game base: the scripted game (tests/support/ScriptedGame.cpp), steered
/// by `steps`, in which "%dir" stands for the game base. Once the game counts as up, the file "go"
/// lies there, outside of the instance directory. Its end ends a game that still runs.
template <typename Game = LaunchMcProcess>
struct GameRun
{
    explicit GameRun(QString steps = "until %dir/go", const QByteArray &argumentTemplate = "-x\n")
    {
        write(".minecraft/versions/oriel7/7.bat", argumentTemplate);
        game->setArgs(Game::ArgJavaPath, QCoreApplication::applicationDirPath() + "/scripted-game");
        game->setArgs(Game::ArgGameBase, dir.path());
        game->setArgs(Game::ArgInstanceDir, instance);
        game->setArgs(Game::ArgUserName, "Steve");
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("GAME_STEPS", steps.replace("%dir", dir.path()));
        game->setProcessEnv(environment);
        QObject::connect(game.get(), &Game::processStateChange, game.get(), [this](int state) {
            const auto names = QMetaEnum::fromType<LaunchMcProcess::State>();
            states << QString(names.valueToKey(state)).mid(5);
            if (state == Game::StateRunning)
                write("go");
            onState(state);
        });
    }

    /// Makes a file; in the game base, unless the path is a full one.
    void write(const QString &path, const QByteArray &data = {}) const
    {
        if (!FS::writeFile(QDir(dir.path()).filePath(path), data))
            qFatal("no file");
    }
    QString file(const QString &name) const { return instance + '/' + name; }
    QByteArray output(const QString &name = "game-output.log") const
    {
        return FS::readFile(file(name)).value_or("none").replace("\r\n", "\n");
    }
    QString story() const { return states.join(' '); }

    QTemporaryDir dir;
    const QString instance = dir.filePath("我 a's%1");
    QStringList states;
    std::function<void(int)> onState = [](int) {};
    std::optional<WindowlessSystem> system{std::in_place};
    std::unique_ptr<Game> game = std::make_unique<Game>("7");
};
