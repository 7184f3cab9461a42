#include "fuzz/Fuzz.h"

#include <QDirIterator>

#include "support/archivekit/Extraction.h"
#include "tests/support/Archives.h"

namespace {

/// An archive whose checksums are right, where the first byte tells a form: each line behind it is
/// an entry, a letter for its kind and its name. All else is an archive as it is.
QByteArray archiveIn(const QByteArray &input)
{
    static const QList<QByteArray> forms{"zip", "7zip", "ustar", "pax", "gnutar gzip"};
    const int form = input.isEmpty() ? -1 : input.front() - '\1';
    if (form < 0 || form >= forms.size())
        return input;
    Items items;
    for (const QByteArray &line : input.mid(1).split('\n')) {
        Item item{line.mid(1)};
        item.mode = line.startsWith('d') ? 0040755 : line.startsWith('l') ? 0120777 : 0100644;
        item.data = line.startsWith('d') ? QByteArray() : QByteArray("../outside");
        items << item;
    }
    return archiveOf(forms[form], items);
}

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
    putFile("archive", archiveIn(input));
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
