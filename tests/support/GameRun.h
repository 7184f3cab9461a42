#pragma once

#include <functional>

#include <QCoreApplication>
#include <QMetaEnum>
#include <QTemporaryDir>

#include "core/launch/LaunchMcProcess.h"
#include "support/jsonfskit/FS.h"

/// One game in a temporary game base: the stub Java (tests/support/StubJava.cpp), steered by
/// `steps`, in which "%dir" stands for the instance directory. Once the game counts as up, the file
/// "go" lies in that directory.
template <typename Game = LaunchMcProcess>
struct GameRun
{
    using State = LaunchMcProcess::State;

    explicit GameRun(QString steps = QStringLiteral("until %dir/go"),
                     const QByteArray &argumentTemplate = "-x\n",
                     const QString &name = QStringLiteral("Instance"))
        : instance(dir.filePath(name))
    {
        if (!FS::writeFile(dir.filePath(QStringLiteral(".minecraft/versions/oriel7/7.bat")),
                           argumentTemplate))
            qFatal("no template");
        game->setArgs(Game::ArgJavaPath,
                      QCoreApplication::applicationDirPath() + QLatin1String("/stub-java"));
        game->setArgs(Game::ArgGameBase, dir.path());
        game->setArgs(Game::ArgInstanceDir, instance);
        game->setArgs(Game::ArgUserName, QStringLiteral("Steve"));
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("STUB_STEPS"),
                           steps.replace(QLatin1String("%dir"), instance));
        game->setProcessEnv(environment);
        QObject::connect(game.get(), &Game::processStateChange, game.get(), [this](State state) {
            const char *const key = QMetaEnum::fromType<State>().valueToKey(state);
            states << QString::fromLatin1(key).mid(5);
            if (state == Game::StateRunning)
                touch(QStringLiteral("go"));
            if (onState)
                onState(state);
        });
    }
    /// Ends a game that is still waiting.
    ~GameRun()
    {
        if (QFileInfo(instance).isDir())
            touch(QStringLiteral("go"));
    }

    void touch(const QString &name, const QByteArray &data = {}) const
    {
        if (!FS::writeFile(file(name), data))
            qFatal("no file");
    }
    QString file(const QString &name) const { return instance + QLatin1Char('/') + name; }
    QByteArray output(const QString &name = QStringLiteral("game-output.log")) const
    {
        return FS::readFile(file(name)).value_or("none").replace("\r\n", "\n");
    }
    QString story() const { return states.join(QLatin1Char(' ')); }

    QTemporaryDir dir;
    QString instance;
    QStringList states;
    std::function<void(State)> onState;
    std::unique_ptr<Game> game = std::make_unique<Game>(QStringLiteral("7"));
};
