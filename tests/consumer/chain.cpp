#include <cstdio>
#include <memory>

#include <QCoreApplication>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/launch/MinecraftLauncher.h"
#include "support/jsonfskit/FS.h"

// Runs a chain of steps of its own, one for each argument, that read a file each.

class ReadStep final : public GameLaunchBase
{
public:
    explicit ReadStep(QString path) : m_path(std::move(path)) {}

protected:
    void onTaskRun() override
    {
        if (FS::readFile(m_path))
            emitSucceeded();
        else
            emitFailed("can't read " + m_path);
    }

private:
    const QString m_path;
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const RivetCoreAtExitManagerUtil core;
    MinecraftLauncher chain;
    for (int i = 1; i < argc; ++i)
        chain.AppendLanuchTask(std::make_shared<ReadStep>(QCoreApplication::arguments().at(i)), 1);
    chain.start();
    std::puts(qUtf8Printable(chain.failReason()));
    return chain.successful() ? 0 : 1;
}
