#pragma once

#include <QtTest>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "support/coresupport/ServiceUrls.h"
#include "tests/support/Await.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestFiles.h"
#include "tests/support/TestServer.h"

/// A fresh core whose web service is a server of the test and whose game data lie in a temporary
/// folder. For sandboxed tests; one at a time.
struct ServiceWorld
{
    ServiceWorld()
    {
        ServiceUrls::setBaseAddress(server.url("").toString());
        Environment::GetInstance()->settings()->setValue("DataPath", dir.path());
    }
    QString path(const QString &name) const { return dir.filePath(name); }
    /// How often the service was asked for @p target.
    int asked(const QString &target) const
    {
        int count = 0;
        for (const TestServer::Request &request : server.requests())
            count += int(request.path == target);
        return count;
    }

    QTemporaryDir dir;
    TestServer server;
    RivetCoreAtExitManagerUtil core; // goes first
};
