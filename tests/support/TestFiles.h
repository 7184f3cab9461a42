#pragma once

#include <QDir>
#include <QDirIterator>
#include <QOperatingSystemVersion>
#include <QProcess>
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

/// Wine knows no junctions: a link of the system below is all there is, which looks like one but
/// can not be removed.
inline bool isWine()
{
    return qEnvironmentVariableIsSet("WINEPREFIX");
}

inline QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished() ? process.readAllStandardOutput().trimmed() : QByteArray();
}

/// Makes @p link a link to the folder @p target, on Windows a junction.
inline void makeLink(const QString &target, const QString &link)
{
    const QString from = QDir::toNativeSeparators(link), to = QDir::toNativeSeparators(target);
    const auto below = [](const QString &path) { return outputOf("winepath", {"-u", path}); };
    if (isWine())
        outputOf("start", {"/wait", "/unix", "/bin/ln", "-s", below(to), below(from)});
    else if (QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows)
        outputOf("cmd", {"/c", "mklink", "/J", from, to});
    else
        QFile::link(target, link);
    QTRY_VERIFY(QFileInfo::exists(link));
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
