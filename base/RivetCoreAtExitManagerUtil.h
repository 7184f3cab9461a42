#pragma once

#include <memory>

#include "base/RivetCoreExport.h"

class AtExitManager;

/// The life of the core in a host: made before the first singleton is asked for, destroyed in an
/// orderly shutdown, which ends all singletons, newest first, and lets them write their state.
/// One at a time; after its end a new one starts the core afresh.
class RIVETCORE_EXPORT RivetCoreAtExitManagerUtil
{
public:
    RivetCoreAtExitManagerUtil();
    virtual ~RivetCoreAtExitManagerUtil();
    RivetCoreAtExitManagerUtil(const RivetCoreAtExitManagerUtil &) = delete;
    RivetCoreAtExitManagerUtil &operator=(const RivetCoreAtExitManagerUtil &) = delete;

private:
    std::unique_ptr<AtExitManager> m_manager;
};
