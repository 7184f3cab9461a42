#pragma once

#include <QDir>
#include <QDirIterator>
#include <QTest>

#include "support/jsonfskit/FS.h"

/// Makes each of @p names, relative to @p folder, a file; "name=content" gives it that content
/// instead of a short one.
inline void makeFiles(const QString &folder, const QStringList &names)
{
    for (const QString &name : names) {
        const QStringList parts = name.split('=');
        QVERIFY(FS::writeFile(folder + '/' + parts[0], parts.value(1, "x").toUtf8()));
    }
}

/// All entries below @p folder in the same form, sorted and joined by blanks; links are not
/// followed.
inline QString treeOf(const QString &folder)
{
    QStringList names;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QByteArray content = FS::readFile(it.next()).value_or("x");
        names << QDir(folder).relativeFilePath(it.filePath()) +
                     (content == "x" ? "" : "=" + content);
    }
    names.sort();
    return names.join(' ');
}
