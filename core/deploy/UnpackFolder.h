#pragma once

#include <memory>

#include <QString>

#include "platform/FileLock.h"

/// The folders that archives are unpacked into before they are moved into place: "{uuid}" inside
/// the deploy directory, with a lock file "{uuid}.lock" beside it for as long as a task uses it.
/// Any thread.
namespace UnpackFolder {

/// A new one in @p deployDir; only its name.
QString newPath(const QString &deployDir);

/// True if @p name is that of such a folder.
bool isName(const QString &name);

/// Takes the lock of the new folder @p path, whose deploy directory is there. Null where the system
/// has no such locks; then nobody else gets it either.
std::unique_ptr<platform::FileLock> lock(const QString &path);

/// Removes what ended processes left behind in @p deployDir. Does nothing once a sweep of this
/// process has left nothing there, for its own tasks clear up after themselves. Blocks.
void sweep(const QString &deployDir);

/// A task of this process has left something in @p deployDir, which the next sweep is to remove.
void sweepAgain(const QString &deployDir);

} // namespace UnpackFolder
