#include "support/coresupport/FilePersistent.h"

#include <optional>

#include "support/jsonfskit/FS.h"

FilePersistent::FilePersistent() = default;

FilePersistent::~FilePersistent() = default;

void FilePersistent::SetSavePathFile(const QString &path)
{
    m_path = path;
}

bool FilePersistent::Save(const QByteArray &data)
{
    return FS::writeFile(m_path, data);
}

bool FilePersistent::Save()
{
    QByteArray data;
    return BuildData(data) && Save(data);
}

bool FilePersistent::Load()
{
    const std::optional<QByteArray> data = FS::readFile(m_path);
    return data && ParseData(*data);
}

bool FilePersistent::BuildData(QByteArray &)
{
    return false;
}
