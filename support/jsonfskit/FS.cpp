#include "support/jsonfskit/FS.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "support/jsonfskit/Remover.h"

namespace FS {

namespace {

enum class Readers {
    AsUsual,
    OwnerOnly,
};

/// A file system without permissions takes none, and the file is written all the same.
void closeToOthers(QFileDevice &file, const QString &folder)
{
    const bool isClosed =
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner) &&
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    Q_UNUSED(isClosed)
}

WriteResult replaceContent(const QString &path, const QByteArray &data, Readers readers)
{
    if (path.isEmpty() || !ensureFilePathExists(path))
        return WriteResult::NotOpened;
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return WriteResult::NotOpened;
    if (readers == Readers::OwnerOnly)
        closeToOthers(file, QFileInfo(path).absolutePath());
    const bool isWritten = file.write(data) == data.size() && file.commit();
    return isWritten ? WriteResult::Written : WriteResult::NotWritten;
}

} // namespace

bool makeFolder(const QString &path)
{
    // Who loses a race finds what the winner has made, so each try gets further.
    constexpr int mostTries = 4;
    for (int tries = 0; tries < mostTries; ++tries) {
        if (QDir().mkpath(path) || QFileInfo(path).isDir())
            return true;
    }
    return false;
}

bool ensureFilePathExists(QString filePath)
{
    return makeFolder(QFileInfo(filePath).absolutePath());
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
    return replaceContent(path, data, Readers::AsUsual) == WriteResult::Written;
}

WriteResult writePrivateFile(const QString &path, const QByteArray &data)
{
    return replaceContent(path, data, Readers::OwnerOnly);
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
