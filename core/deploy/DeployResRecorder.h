#pragma once

#include "core/deploy/DepHistoryFlatFile.h"

template <typename Type>
class LazySingleton;

/// The history of ordinary resources. A singleton until the at-exit manager runs, when it saves.
///
/// The host calls init() once at start, with the file "deploy.cache" in FSH::localAppDataPath().
class RIVETCORE_EXPORT DeployResRecorder : public DepHistoryFlatFile
{
public:
    /// Waits for deployments that run: they still record what they did.
    ~DeployResRecorder() override;

    static DeployResRecorder *GetInstance();

private:
    friend class LazySingleton<DeployResRecorder>;
    DeployResRecorder() = default;
};
