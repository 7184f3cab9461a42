#pragma once

#include <QStringList>

inline QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// The columns of a row "first|second|third" of a test's table.
inline QStringList columns(const char *row)
{
    return text(row).split(QLatin1Char('|'));
}

/// Makes files below @p folder from "name name=content".
bool makeFiles(const QString &folder, const QString &files);

/// All entries below @p folder in the same form, sorted, the directories as names; links are not
/// followed.
QString treeOf(const QString &folder);
