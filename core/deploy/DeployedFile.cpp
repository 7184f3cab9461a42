#include "core/deploy/DeployedFile.h"

#include <array>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include "platform/FileEntry.h"

namespace DeployedFile {

const char md5OfNothing[] = "d41d8cd98f00b204e9800998ecf8427e";

std::optional<QString> md5(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Md5);
    std::array<char, 128 * 1024> block;
    qint64 bytes = 0;
    while ((bytes = file.read(block.data(), block.size())) > 0)
        hash.addData(block.data(), int(bytes));
    if (bytes < 0)
        return std::nullopt;
    return QString::fromLatin1(hash.result().toHex());
}

bool isBelow(const QString &name)
{
    const QString path = QDir::fromNativeSeparators(name);
    return !QDir::isAbsolutePath(path) &&
           !path.split(QLatin1Char('/')).contains(QLatin1String(".."));
}

bool isRemovable(const QString &folder, const QString &name)
{
    if (!isBelow(name))
        return false;
    const QString path = QDir::fromNativeSeparators(name);
    const QDir top(QDir(folder).absolutePath());
    for (int slash = path.indexOf(QLatin1Char('/')); slash >= 0;
         slash = path.indexOf(QLatin1Char('/'), slash + 1)) {
        if (platform::entryKind(top.filePath(path.left(slash))) == platform::EntryKind::Link)
            return false;
    }
    return true;
}

} // namespace DeployedFile
