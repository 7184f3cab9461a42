#include "platform/FileUse.h"

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace platform {

namespace {

namespace fs = std::filesystem;

/// True if @p link, one of the links that /proc shows, leads to @p file itself.
bool leadsTo(const fs::path &link, const struct stat &file)
{
    struct stat found
    {
    };
    return stat(link.c_str(), &found) == 0 && found.st_dev == file.st_dev &&
           found.st_ino == file.st_ino;
}

/// @p process is the process's folder in /proc. One that ends meanwhile or belongs to another user
/// can't be looked at.
bool isUsedBy(const fs::path &process, const struct stat &file)
{
    if (leadsTo(process / "exe", file))
        return true;
    std::error_code error;
    for (fs::directory_iterator it(process / "fd", error), end; !error && it != end;
         it.increment(error)) {
        if (leadsTo(it->path(), file))
            return true;
    }
    return false;
}

bool isOtherProcess(const fs::path &entry)
{
    const std::string name = entry.filename().string();
    return name.find_first_not_of("0123456789") == std::string::npos &&
           name != std::to_string(getpid());
}

} // namespace

FileUse fileUse(const QString &absolutePath)
{
    struct stat file
    {
    };
    if (stat(QFile::encodeName(absolutePath).constData(), &file) != 0)
        return FileUse::Unknown;
    std::error_code error;
    for (fs::directory_iterator it("/proc", error), end; !error && it != end; it.increment(error)) {
        if (isOtherProcess(it->path()) && isUsedBy(it->path(), file))
            return FileUse::Held;
    }
    return FileUse::Free;
}

} // namespace platform
