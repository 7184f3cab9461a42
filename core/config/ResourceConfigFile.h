#pragma once

#include <QJsonObject>
#include <QString>

/// The file of a resource configuration: one object in Qt's binary JSON form.
///
/// A file that could not be read is set aside as "<path>.damaged" before the first save takes its
/// place. Not thread-safe.
class ResourceConfigFile
{
public:
    QString path;

    /// False, with a line on the log, without a path.
    bool hasPath() const;

    enum class Outcome {
        Missing,
        Unreadable,
        Read, ///< the object is empty if the file is damaged
    };
    Outcome read(QJsonObject &object);

    /// False if the file could not be written, or an unreadable one not be set aside.
    bool write(const QJsonObject &object);

private:
    bool setAside();

    bool m_isDamaged = false;
};
