#include "fuzz/Fuzz.h"

#include <QDirIterator>

#include "support/archivekit/Extraction.h"

namespace {

bool hasOnlyPlainEntries(const QString &folder)
{
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QFileInfo entry = it.fileInfo();
        if (entry.isSymLink() || !(entry.isFile() || entry.isDir()) ||
            entry.fileName().startsWith(".rivet-unpack-"))
            return false;
    }
    return true;
}

} // namespace

/// Archives of every form, unpacked into a folder that has content.
void fuzz::takeInput(const QByteArray &input)
{
    putFile("archive", input);
    putFile("outside/a", "outside");
    putFile("target/a", "old");
    putFile("target/sub/b", "old");
    const QString before = tree();
    const bool isUnpacked = archivekit::Extraction(path("archive"), path("target")).run();
    require(isUnpacked || tree() == before, "a refused archive leaves nothing");
    require(hasOnlyPlainEntries(path("target")), "there are but files and folders");

    QDir(path("target")).removeRecursively();
    putFile("target/a", "old");
    putFile("target/sub/b", "old");
    require(tree() == before, "nothing comes to lie outside of the target");
}
