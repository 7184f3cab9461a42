#pragma once

#include <QJsonObject>

class RivetUserList;
class UserFiles;

/// One save of the stored logins, which is several files: it happens as a whole or not at all.
///
/// The whole of it is written to a file of its own first. If the process is killed behind that, the
/// next start finds the file and finishes the save. Main thread; blocks.
namespace PendingSave {

/// What users.dat holds.
QJsonObject directoryOf(const RivetUserList &list);

/// Notes the save of @p list and of the records of @p names. A failure only means that a kill
/// during the save may leave one part of it.
void begin(const UserFiles &files, const RivetUserList &list, const QStringList &names);

/// The save has ended, well or not.
void end(const UserFiles &files);

/// Finishes the save of an earlier process.
void finish(UserFiles &files);

} // namespace PendingSave
