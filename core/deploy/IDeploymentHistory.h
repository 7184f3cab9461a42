#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/// One deployment of one resource into one folder.
struct DeployRecordItem
{
    QDateTime deployTime;
    /// File path relative to the folder, with forward slashes, and the MD5 of the file's content in
    /// lower-case hexadecimal.
    QHash<QString, QString> deployFiles;
};

/// What was deployed where. Any thread. Folders are compared by their cleaned paths.
class IDeploymentHistory
{
public:
    /// Makes or replaces the record of the resource in the folder. Reads the files, so it blocks.
    /// With @p save the record is on disk when the call returns, if it can be written at all.
    virtual void insertRecord(const QString &deployPath, quint64 resKey, const QStringList &files,
                              const QDateTime &time, bool save) = 0;

    /// Copies the record out; false if there is none.
    virtual bool queryRecord(const QString &deployPath, quint64 resKey, DeployRecordItem &item) = 0;

    /// True if there was a record.
    virtual bool deleteRecord(const QString &deployPath, quint64 resKey, bool save) = 0;

    /// The resources of a folder; empty if the folder is unknown.
    virtual QList<quint64> getDeployResInDeployFolder(const QString &deployPath) = 0;

    /// Forgets everything, in memory only.
    virtual void clearAllRecord() = 0;

protected:
    /// Nobody owns a history through this interface.
    ~IDeploymentHistory() = default;
};
