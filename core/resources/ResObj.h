#pragma once

#include <memory>

#include <QObject>
#include <QPointer>

#include "base/RivetCoreExport.h"
#include "core/resources/ResInfo.h"
#include "core/resources/ResUpdateTask.h"

class DeployTask;

/// One resource: its record, and the handle by which it is installed, stopped and deleted.
///
/// The host keeps a table of them, each in a std::shared_ptr, and fills a new one from its cache or
/// from the service. Main thread only. The signals are those of its update task, which does all
/// work; the status numbers are those of ResUpdateTask::ResInstallStatus.
class RIVETCORE_EXPORT ResObj : public QObject,
                                public ResInfo,
                                public std::enable_shared_from_this<ResObj>
{
    Q_OBJECT
public:
    ResObj(uint id, ResType type, QObject *parent);
    ~ResObj() override;

    bool loadFromCache() override;
    /// Keeps a usable record on disk. An unusable one leaves the file alone, but the fields that
    /// were read before the fault are changed.
    bool loadFromRemote(const QJsonObject &object) override;

    /// Takes back one install(); the last one ends the transfer.
    void stop();
    /// Removes the resource's files. The object stays, with the status ResInstallDeleted, until the
    /// host drops it.
    void deleteRes();

    uint installStatus() const;
    /// Per cent.
    uint installProgress() const;
    /// Bytes per second.
    uint dlSpeed() const;
    /// Bytes.
    quint64 dlTotalSize() const;
    quint64 dlDownloadSize() const;

    /// The task that deploys the downloaded file, owned by the caller; null, with a line on the
    /// log, if @p folder, the game directory of an instance, is empty. Java runtimes, pictures and
    /// game clients have directories that all instances share. @p id is passed through: steps
    /// give that of the instance.
    DeployTask *createDeployResTask(const QString &folder, uint id);

    /// Owned by this object.
    ResUpdateTask *updateTask() const { return m_pUpdateTask; }

    /// Appends the resource keys in @p text, as records name their dependencies, to @p out: section
    /// words and ids, cut at ";". @p type is that of the record. True always.
    static bool parseDependList(ResType type, const QString &text, QList<quint64> &out);

public Q_SLOTS:
    /// Refreshes the record and downloads the file; joins an installation under way.
    void install();

Q_SIGNALS:
    void resInfoUpdated(bool fromRemote);
    void installStatusChanged(uint oldStatus, uint newStatus);
    void installProgressChanged(uint percent);
    void dlSpeedUpdated(qulonglong dlSpeed);

private:
    bool parseResInfoFromJson(const QJsonObject &object);

    QPointer<ResUpdateTask> m_pUpdateTask;
};
