#pragma once

#include <memory>

#include <QTemporaryDir>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "platform/LocalAppData.h"
#include "support/coresupport/ServiceUrls.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestServer.h"

/// The core with a local data directory and a service of its own, for as long as it lives. For
/// tests in a sandbox.
struct CoreRun : platform::LocalAppData
{
    explicit CoreRun(const QString &place = {}) : root(place.isEmpty() ? folder.path() : place)
    {
        replace(this);
        ServiceUrls::setBaseAddress(server.url("").toString());
        restart();
    }
    ~CoreRun() override { core.reset(), replace(nullptr); }
    QString directory() const override { return root; }
    QString file(const QString &name) const { return root + "/oriel/rivet/" + name; }
    /// Ends all singletons, which write their files, and starts afresh.
    void restart() { core.reset(), core = std::make_unique<RivetCoreAtExitManagerUtil>(); }
    /// The paths asked for that hold @p part, with their queries.
    QStringList asked(const QString &part) const
    {
        QStringList paths;
        for (const TestServer::Request &request : server.requests())
            paths << request.path;
        return paths.filter(part);
    }

    const QTemporaryDir folder;
    const QString root;
    TestServer server;
    std::unique_ptr<RivetCoreAtExitManagerUtil> core;
};
