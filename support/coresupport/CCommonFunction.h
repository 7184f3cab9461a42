#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "support/coresupport/CoreSupportExport.h"

/// Small services that many classes of the core share. Static members only; any thread.
class CORESUPPORT_EXPORT CCommonFunction
{
public:
    CCommonFunction() = delete;

    /// Prepares a service's reply in place so that it parses as JSON: byte order marks in front,
    /// NUL bytes and surrounding white space go, control characters inside become blanks.
    /// Parentheses of a wrapped reply stay. True when something is left.
    static bool FilterJsonData(QByteArray &data);

    /// The bytes between the first @p begin and the next @p end behind it; empty if either is
    /// missing.
    static QByteArray GetMidByteArray(const QString &begin, const QString &end,
                                      const QByteArray &data);

    /// Arguments of the game's Java, separated by blanks. With @p cautious the smaller set that
    /// also starts on a machine with little memory, which a repair falls back to.
    static QString GetDefaultJVMParam(bool cautious);

    /// True if every version that @p these names lies in the set that @p others names; VersionSet
    /// tells the form of both. An empty first set is in nothing.
    /// @throws Exception on a malformed member of either.
    static bool IsThisVerSetInOtherVerSet(const QString &these, const QString &others);

    /// Deletes what lies in @p folder but for the paths of @p exclude, which are relative to the
    /// folder or absolute, and all their content. With @p wholeTree everything below the folder
    /// counts and emptied folders go; without it only the files that lie in the folder itself.
    /// False if something could not go or the folder is refused; FS tells the rules.
    static bool ClearFolderButExclude(const QString &folder, const QStringList &exclude,
                                      bool wholeTree);

    /// Deletes one file; true as well if there is none.
    static bool DeleteSingleFile(const QString &path);

    /// Gives memory back to the system; takes some milliseconds.
    static void OptimizeSystemMemory();
};
