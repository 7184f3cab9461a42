#include "core/deploy/DeployGameResRecorder.h"

#include <algorithm>

#include "base/LazySingleton.h"
#include "core/deploy/DeployTask.h"

DeployGameResRecorder::~DeployGameResRecorder()
{
    DeployTask::waitForRunning();
}

DeployGameResRecorder *DeployGameResRecorder::GetInstance()
{
    return LazySingleton<DeployGameResRecorder>::get();
}

bool DeployGameResRecorder::isIgnoreFile(const QString &path)
{
    static constexpr const char *recorded[] = {".jar", ".bat", ".json"};
    return DepHistoryFlatFile::isIgnoreFile(path) ||
           std::none_of(std::begin(recorded), std::end(recorded), [&](const char *ending) {
               return path.endsWith(QLatin1String(ending), Qt::CaseInsensitive);
           });
}
