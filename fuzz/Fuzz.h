#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// What the targets share. A target is one file with takeInput(), which gives the bytes to a reader
/// of the product and looks at what must hold whatever they are. Under libFuzzer the engine makes
/// the bytes up; in the other builds Driver.cpp reads them from files.
namespace fuzz {

/// The target. Called again and again in one process, so it begins in an emptied folder and leaves
/// nothing behind that the next input could see.
void takeInput(const QByteArray &input);

/// Ends the process, with a line, where something does not hold.
void require(bool holds, const char *what);

/// The folder of this process, where the local data directory and the game data directory are too.
QString folder();
QString path(const QString &name);
void putFile(const QString &name, const QByteArray &bytes);
/// All entries below folder(), sorted, with the contents of files.
QString tree();

/// An object in text or in Qt's binary form; empty if it is neither.
QJsonObject objectIn(const QByteArray &input);

/// Delivers what is queued, and what that queues.
void spin();

} // namespace fuzz
