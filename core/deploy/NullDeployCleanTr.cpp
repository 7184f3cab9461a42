#include "core/deploy/NullDeployCleanTr.h"

bool NullDeployCleanTr::Execute()
{
    m_hasRun = true;
    return true;
}

QStringList NullDeployCleanTr::getExecuteResult()
{
    return {};
}
