#pragma once

#include <QDir>
#include <QDirIterator>
#include <QTest>

#include "support/jsonfskit/FS.h"

/// Makes each of @p names, relative to @p folder, a file with a short content.
inline void makeFiles(const QString &folder, const QStringList &names)
{
    for (const QString &name : names)
        QVERIFY(FS::writeFile(folder + '/' + name, "x"));
}

/// All entries below @p folder, relative, sorted and joined by blanks; links are not followed.
inline QString treeOf(const QString &folder)
{
    QStringList names;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        names << QDir(folder).relativeFilePath(it.next());
    names.sort();
    return names.join(' ');
}
