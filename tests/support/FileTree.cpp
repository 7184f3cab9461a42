#include "tests/support/FileTree.h"

#include <QDirIterator>

#include "support/jsonfskit/FS.h"

bool makeFiles(const QString &folder, const QString &files)
{
    bool all = true;
    for (const QString &file : files.split(QLatin1Char(' '))) {
        const QStringList parts = file.split(QLatin1Char('='));
        all &= FS::writeFile(folder + QLatin1Char('/') + parts[0], parts.value(1).toUtf8());
    }
    return all;
}

QString treeOf(const QString &folder)
{
    QStringList names;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString content = QString::fromUtf8(FS::readFile(it.next()).value_or(QByteArray()));
        const QString mark = content.isEmpty() ? QString() : text("=");
        names << QDir(folder).relativeFilePath(it.filePath()) + mark + content;
    }
    names.sort();
    return names.join(QLatin1Char(' '));
}
