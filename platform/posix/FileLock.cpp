#include "platform/FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace platform {

struct FileLock::Hold
{
    Hold(QByteArray filePath, int descriptor) : path(std::move(filePath)), file(descriptor) {}
    ~Hold() { close(file); }
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;

    /// False if the holder before has taken away the file that this one has opened.
    bool isInPlace() const
    {
        struct stat opened
        {
        }, named{};
        return fstat(file, &opened) == 0 && stat(path.constData(), &named) == 0 &&
               opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
    }

    const QByteArray path;
    const int file;
};

FileLock::FileLock(std::unique_ptr<Hold> hold) : m_hold(std::move(hold)) {}

FileLock::~FileLock()
{
    // Before the hold ends, so that nobody's file is taken away but this one's.
    unlink(m_hold->path.constData());
}

std::unique_ptr<FileLock> FileLock::tryTake(const QString &absolutePath)
{
    const QByteArray path = QFile::encodeName(absolutePath);
    while (true) {
        const int file = open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (file < 0)
            return nullptr;
        auto hold = std::make_unique<Hold>(path, file);
        if (flock(file, LOCK_EX | LOCK_NB) != 0) {
            // A file system without locks: nobody holds the file, and nobody ever would remove it.
            if (errno != EWOULDBLOCK)
                unlink(path.constData());
            return nullptr;
        }
        if (hold->isInPlace())
            return std::unique_ptr<FileLock>(new FileLock(std::move(hold)));
    }
}

} // namespace platform
