#pragma once

#include "core/deploy/DepHistoryFlatFile.h"

template <typename Type>
class LazySingleton;

/// The history of game clients. A singleton until the at-exit manager runs, when it saves.
///
/// The host calls init() once at start, with the file "deploygame.cache" in
/// FSH::localAppDataPath().
class RIVETCORE_EXPORT DeployGameResRecorder : public DepHistoryFlatFile
{
public:
    /// Waits for deployments that run: they still record what they did.
    ~DeployGameResRecorder() override;

    static DeployGameResRecorder *GetInstance();

protected:
    /// Only names that end in ".jar", ".bat" or ".json" are recorded.
    bool isIgnoreFile(const QString &path) override;

private:
    friend class LazySingleton<DeployGameResRecorder>;
    DeployGameResRecorder() = default;
};
