#include "support/jsonfskit/FS.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "support/jsonfskit/Remover.h"

namespace FS {

bool ensureFilePathExists(QString filePath)
{
    return QDir().mkpath(QFileInfo(filePath).absolutePath());
}

std::optional<QByteArray> readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray data = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return data;
}

bool writeFile(const QString &path, const QByteArray &data)
{
    if (path.isEmpty() || !ensureFilePathExists(path))
        return false;
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit();
}

RemovalResult removeFile(const QString &path)
{
    return Remover().removeFile(path);
}

RemovalResult removeTree(const QString &path)
{
    return Remover().removeTree(path);
}

RemovalResult clearFolder(const QString &folder, const QStringList &exclude, ClearScope scope)
{
    return Remover().clearFolder(folder, exclude, scope);
}

} // namespace FS
