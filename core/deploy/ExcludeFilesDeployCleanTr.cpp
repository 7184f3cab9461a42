#include "core/deploy/ExcludeFilesDeployCleanTr.h"

#include "support/coresupport/CCommonFunction.h"

bool ExcludeFilesDeployCleanTr::Execute()
{
    if (!begin())
        return false;
    const QList<quint64> keys = m_history->getDeployResInDeployFolder(m_folder);
    for (const quint64 key : keys) {
        if (m_wanted.contains(key))
            m_result += recordedFiles(key);
        else
            m_history->deleteRecord(m_folder, key, true);
    }
    return CCommonFunction::ClearFolderButExclude(m_folder, m_result, true);
}

QStringList ExcludeFilesDeployCleanTr::getExecuteResult()
{
    return m_result;
}
