#include "fuzz/Fuzz.h"

#include <QDir>

#include "core/accounts/UserFiles.h"
#include "core/deploy/DeployedFile.h"
#include "support/archivekit/EntryNames.h"

namespace {

bool isWithin(const QString &path, const QString &folder)
{
    return QDir::cleanPath(path).startsWith(folder + '/');
}

void checkEntry(const QByteArray &raw)
{
    const auto name = archivekit::decodeName(raw, archivekit::NameCharset::Unknown);
    fuzz::require(name.has_value(), "bytes of no charset are a name in some");
    if (archivekit::faultOf(*name) == archivekit::NameFault::None) {
        fuzz::require(isWithin(fuzz::path(*name), fuzz::folder()), "an entry stays in its folder");
        fuzz::require(DeployedFile::isBelow(*name), "what is unpacked can be recorded");
    }
    if (DeployedFile::isBelow(*name))
        fuzz::require(isWithin(fuzz::path("a/" + *name), fuzz::folder()), "a record stays below");
}

void checkUsers(const QString &one, const QString &other)
{
    const UserFiles files(fuzz::folder());
    if (one.isEmpty() || other.isEmpty())
        return;
    const QFileInfo folder(files.folderOf(one));
    fuzz::require(folder.path() == fuzz::path("users"),
                  "a user's folder lies among those of users");
    fuzz::require(files.recordOf(one) == folder.filePath() + '/' + folder.fileName() + ".dat",
                  "a record lies in the folder of its user");
    fuzz::require(folder.filePath() != files.usersFile(), "no user is the list of users");
    fuzz::require(one == other || files.folderOf(other) != folder.filePath(), "no two users meet");
}

} // namespace

/// Names that become paths: two lines, each an archive entry, a recorded file and a user.
void fuzz::takeInput(const QByteArray &input)
{
    const QByteArray one = input.left(input.indexOf('\n')), other = input.mid(one.size() + 1);
    checkEntry(one);
    checkEntry(other);
    checkUsers(QString::fromUtf8(one), QString::fromUtf8(other));
}
