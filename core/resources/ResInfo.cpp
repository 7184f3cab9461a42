#include "core/resources/ResInfo.h"

#include <QDir>
#include <QFile>

#include "core/foundation/BinaryJson.h"
#include "core/foundation/FSH.h"
#include "core/resources/ResInfoJson.h"
#include "support/jsonfskit/Log.h"

ResInfo::ResInfo() = default;
ResInfo::ResInfo(const ResInfo &other) = default;
ResInfo &ResInfo::operator=(const ResInfo &other) = default;
ResInfo::~ResInfo() = default;

QJsonObject ResInfo::toJsonObj() const
{
    return ResInfoJson::write(*this);
}

bool ResInfo::deleteCache()
{
    return QFile::remove(resCachePathFile());
}

QString ResInfo::resCachePathFile() const
{
    return FSH::resourceDownloadDir(m_resType) % QDir::separator() % QString::number(m_resId) %
           QLatin1String(".inf");
}

void ResInfo::saveToCache()
{
    if (BinaryJson::writeFile(resCachePathFile(), toJsonObj()))
        return;
    Log::warning(QStringLiteral("save resource information failed, type:%1, id:%2")
                     .arg(m_resType)
                     .arg(m_resId));
}
