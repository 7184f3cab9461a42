#pragma once

#include <functional>
#include <memory>
#include <set>

#include <QHash>
#include <QPointer>
#include <QSet>

#include "base/RivetCoreExport.h"
#include "core/foundation/ResourceKey.h"
#include "core/launch/GameLaunchBase.h"
#include "core/resources/ResObj.h"

class DeployTask;
class IResManager;
class MCInstanceObj;
class QJsonObject;

/// Base of the steps of a launch that make resources ready: it follows their downloads, adds their
/// dependencies as they appear, and then deploys them all into the instance.
///
/// Main thread only; deployments run in the global thread pool. A subclass says which resources are
/// wanted: its onTaskRun() calls that of this class first and gets to its getReadyForTask(), which
/// follows each resource and calls getReadyForTask() of this class at the end.
///
/// Progress is out of 100: 5 at the check, up to 85 during the downloads, up to 100 during the
/// deployments; it never falls. No deployment begins before the last download has ended. The first
/// failure ends the step, and stops no transfer: others may want it.
class RIVETCORE_EXPORT MinecraftLaunchStep : public GameLaunchBase
{
    Q_OBJECT
public:
    /// @p manager is not owned and may be null.
    MinecraftLaunchStep(std::weak_ptr<MCInstanceObj> instance, IResManager *manager,
                        QObject *parent);
    /// Deployments that run go on to their end.
    ~MinecraftLaunchStep() override;

    bool canAbort() const override;

public Q_SLOTS:
    /// Takes back this step's part in every download and fails with "user cancel". A deployment
    /// that runs goes on to its end; one that waits for a thread is taken back.
    bool abort() override;

protected:
    using ResKey = quint64; ///< ResourceKey

    /// Forgets the resources of an earlier run.
    void onTaskRun() override;
    void emitFailed(QString reason) override;

protected Q_SLOTS:
    virtual void getReadyForTask();
    virtual void onTaskUpdateStatusChanged(quint32 oldStatus, quint32 newStatus);
    virtual void onTaskDownloadProgress(quint64 dlSpeed);
    virtual void onTaskExtractFinished();
    virtual void onTaskExtractProgress(quint64 bytesUnZip, quint64 bytesTotal);

protected:
    /// Listens to @p object and makes its deployment task; nothing for null.
    void connectToSlots(std::shared_ptr<ResObj> object);
    void disConnectUpdateCallbacks();

    /// Tells what comes next. False if a listener has ended the step in answer, perhaps deleted it.
    [[nodiscard]] bool announce(const QString &brief, const QString &text);

    /// Tells @p error, leaves @p line on the log if there is one, and fails with @p reason.
    void failWith(GameLaunchBase::Error error, const QString &reason, const QString &line = {});
    /// Tells the last percent and succeeds.
    void succeed();

    /// Wants the resource, whose object comes from the manager. One that has no object fails the
    /// step as soon as the base's getReadyForTask() is reached.
    void follow(ResKey key, std::shared_ptr<ResObj> object);
    /// The same for the object that the manager has or makes.
    void followMade(ResKey key);
    /// The same for the resource that the service describes in @p info.
    void followDescribed(ResKey key, const QJsonObject &info);

    /// Calls getReadyForTask() at once if @p list has been fetched, else when its fetch has ended.
    template <typename List>
    void getReadyWithList(List &list)
    {
        if (list.isListUpdated()) {
            getReadyForTask();
            return;
        }
        m_isListAwaited = true;
        connect(&list, &List::updateListFinished, this, &MinecraftLaunchStep::onListUpdated,
                Qt::UniqueConnection);
        list.updateList();
    }

    std::shared_ptr<MCInstanceObj> instance() const { return m_instance.lock(); }
    IResManager *resManager() const { return m_manager; }

private Q_SLOTS:
    void onListUpdated();

private:
    quint32 GetCheckUpdateProgress();
    quint32 GetDownLoadProgress(quint64 bytes);
    quint32 GetExtractProgress(quint64 bytes);
    void advance(quint32 percent);
    void tell(const QString &text, quint32 percent);

    void onResourceDone(ResObj &object);
    void addDependencies(const ResObj &object);
    void startDeployments();
    void ensureDeployTask(ResObj &object);
    std::shared_ptr<ResObj> knownRes(ResKey key) const;
    DeployTask *signallingTask(MCInstanceObj &instance) const;
    void signalledBy(QObject *source, const std::function<void()> &slot);
    void forgetDeployTask(DeployTask &task);
    void takeBackWaitingDeployments();

    const std::weak_ptr<MCInstanceObj> m_instance;
    std::set<ResKey> m_updatingRes;  ///< whose download is not through
    std::set<ResKey> m_deployingRes; ///< downloaded, but their deployment is not through
    std::set<ResKey> m_deployedRes;
    QHash<ResKey, DeployTask *> m_deployTasks; ///< owned
    IResManager *const m_manager;

    struct Followed
    {
        QPointer<ResObj> object;
        QMetaObject::Connection statusConnection;
    };
    QHash<ResKey, Followed> m_followed;
    QObject *m_source = nullptr;       ///< of the signal that is being handled
    QSet<DeployTask *> m_startedTasks; ///< of m_deployTasks: those that the pool has
    QSet<ResKey> m_expandedRes;        ///< whose dependencies have been added, so that circles end
    quint64 m_deployedBytes = 0;       ///< of m_deployedRes
    quint32 m_percent = 0;
    bool m_isListAwaited = false;
    bool m_lacksObject = false;
};
