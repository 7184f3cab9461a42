#pragma once

#include <QtGlobal>

#include "base/RivetCoreExport.h"

class DeployCleanTr;
template <typename Type>
class LazySingleton;

/// Knows which strategy cleans the folder of which resources. A singleton until the at-exit manager
/// runs.
class RIVETCORE_EXPORT DeployCleanTrFacotry
{
public:
    virtual ~DeployCleanTrFacotry();
    DeployCleanTrFacotry(const DeployCleanTrFacotry &) = delete;
    DeployCleanTrFacotry &operator=(const DeployCleanTrFacotry &) = delete;

    static DeployCleanTrFacotry *GetInstance();

    /// A new strategy for resources of the ResType @p kind, never null; the caller owns it.
    DeployCleanTr *createDeployCleanTr(uint kind);

private:
    friend class LazySingleton<DeployCleanTrFacotry>;
    DeployCleanTrFacotry();
};
