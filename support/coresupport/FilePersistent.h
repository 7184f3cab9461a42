#pragma once

#include <QByteArray>
#include <QString>

#include "support/coresupport/CoreSupportExport.h"

/// Base of objects that keep their state in one file. No QObject; inherited beside one.
///
/// Not thread-safe. The file is replaced as a whole, so a save that fails leaves the old content,
/// and a file that does not parse stays as it is until the next save.
class CORESUPPORT_EXPORT FilePersistent
{
public:
    FilePersistent();
    virtual ~FilePersistent();
    FilePersistent(const FilePersistent &) = delete;
    FilePersistent &operator=(const FilePersistent &) = delete;

    /// Sets the file of Load() and Save().
    virtual void SetSavePathFile(const QString &path);
    /// Makes @p data the whole content of the file; makes the folder when it is missing.
    virtual bool Save(const QByteArray &data);
    /// Saves what BuildData() gives; false if it gives nothing.
    virtual bool Save();
    /// False if the file cannot be read, else the answer of ParseData().
    virtual bool Load();

protected:
    /// Puts the state into @p out. False here; subclasses that save override it.
    virtual bool BuildData(QByteArray &out);
    /// Takes the state from the file's bytes; false if they are not of its form.
    virtual bool ParseData(const QByteArray &data) = 0;

private:
    QString m_path;
};
