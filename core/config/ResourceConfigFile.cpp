#include "core/config/ResourceConfigFile.h"

#include <QFile>

#include "core/foundation/BinaryJson.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

bool ResourceConfigFile::hasPath() const
{
    if (path.isEmpty())
        Log::critical(QStringLiteral("config file path not set!"));
    return !path.isEmpty();
}

ResourceConfigFile::Outcome ResourceConfigFile::read(QJsonObject &object)
{
    m_isDamaged = false;
    if (!QFile::exists(path))
        return Outcome::Missing;
    m_isDamaged = true;
    const std::optional<QByteArray> bytes = FS::readFile(path);
    if (!bytes)
        return Outcome::Unreadable;
    const std::optional<QJsonObject> read = BinaryJson::parse(*bytes);
    m_isDamaged = !read;
    object = read.value_or(QJsonObject());
    return Outcome::Read;
}

bool ResourceConfigFile::write(const QJsonObject &object)
{
    if (m_isDamaged && QFile::exists(path) && !setAside())
        return false;
    return BinaryJson::writeFile(path, object);
}

bool ResourceConfigFile::setAside()
{
    const QString aside = path % QLatin1String(".damaged");
    if (!FS::removeFile(aside) || !QFile::rename(path, aside))
        return false;
    m_isDamaged = false;
    Log::warning(QLatin1String("an unreadable file was set aside: ") % aside);
    return true;
}
