#include "platform/FileStamp.h"

#include <sys/stat.h>

#include <QFile>

namespace platform {

QByteArray fileStamp(const QString &path)
{
    struct stat file
    {
    };
    if (stat(QFile::encodeName(path).constData(), &file) != 0)
        return {};
    const qint64 parts[] = {static_cast<qint64>(file.st_dev),
                            static_cast<qint64>(file.st_ino),
                            file.st_size,
                            file.st_mtim.tv_sec,
                            file.st_mtim.tv_nsec,
                            file.st_ctim.tv_sec,
                            file.st_ctim.tv_nsec};
    return QByteArray(reinterpret_cast<const char *>(parts), sizeof parts);
}

} // namespace platform
