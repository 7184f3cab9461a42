#include "core/deploy/DeployCleanTr.h"

void DeployCleanTr::Init(const QString &folder, QList<quint64> &wanted, IDeploymentHistory *history)
{
    m_folder = folder;
    m_wanted = wanted;
    m_history = history;
}

bool DeployCleanTr::begin()
{
    m_hasRun = true;
    return m_history && !m_folder.isEmpty();
}

QStringList DeployCleanTr::recordedFiles(quint64 key) const
{
    DeployRecordItem record;
    m_history->queryRecord(m_folder, key, record);
    return record.deployFiles.keys();
}
