#pragma once

#include <functional>

#include <QJsonObject>
#include <QString>

class QNetworkReply;

/// Documents that the service is asked for once in a process, with their last good answer on disk
/// for the times without a network: the lists of game clients and of Java runtimes, the setting
/// information. Main thread.
namespace CachedAnswer {

enum class Form {
    BinaryJson,   ///< the whole object in Qt's binary JSON form
    FilteredText, ///< the body after CCommonFunction::FilterJsonData
};

struct Kind
{
    QString unreadableLine;  ///< log line for a body that is refused, which follows it
    QString unreachableLine; ///< log line for a network error, whose number follows it
    QString cacheFile;
    Form cacheForm;
};

/// The body of a finished reply, prepared for parsing.
QByteArray filteredBody(QNetworkReply &reply);

enum class Verdict {
    Refused,
    NothingNew, ///< accepted, but no reason to keep it on disk
    Good,
};
using Parser = std::function<Verdict(const QJsonObject &answer)>;

/// Gives the answer of the finished @p reply to @p parse and keeps a good one on disk; after a
/// network error gives it the kept one. False if nothing was accepted. A body that is refused does
/// not fall back to the disk, and neither replaces what lies there. A failed write is passed over.
bool take(QNetworkReply &reply, const Kind &kind, const Parser &parse);

} // namespace CachedAnswer
