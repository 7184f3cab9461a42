#pragma once

#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "tests/support/CoreRun.h"
#include "tests/support/TestFiles.h"

/// A run of the core whose game data lie in its folder as well.
struct ServiceWorld : CoreRun
{
    ServiceWorld() { Environment::GetInstance()->settings()->setValue("DataPath", folder.path()); }
    QString path(const QString &name) const { return folder.filePath(name); }
};
