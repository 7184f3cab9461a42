#pragma once

#include <memory>

#include <QObject>

#include "base/RivetCoreExport.h"

/// One thing that the user can start by its address: a server, a room.
///
/// The host implements it and holds it by std::shared_ptr. Main thread only. The library does not
/// touch the two flags: the concrete class sets them as a launch goes on.
class RIVETCORE_EXPORT GameInstance : public QObject,
                                      public std::enable_shared_from_this<GameInstance>
{
    Q_OBJECT
public:
    explicit GameInstance(QObject *parent = nullptr);
    ~GameInstance() override;

    virtual quint32 instanceId() = 0;
    /// The name to show. Nothing in this library asks for it.
    virtual QString instanceName() = 0;
    /// The name of the game client version that it runs.
    virtual QString clientVersion() = 0;
    /// Absolute path of its game directory.
    virtual QString instanceDir() = 0;

public Q_SLOTS:
    virtual void start(QString host, quint16 port) = 0;
    virtual void stop() = 0;

public:
    bool isRunning() const { return m_isRunning; }
    void setRunning(bool isRunning) { m_isRunning = isRunning; }
    bool isLaunching() const { return m_isLaunching; }
    void setLaunching(bool isLaunching) { m_isLaunching = isLaunching; }

    /// False for every instance.
    bool isUpdated();
    /// Emits removed(), whereupon who holds this object drops it.
    void remove();

Q_SIGNALS:
    void removed(GameInstance *pInstance);

private:
    bool m_isRunning = false;
    bool m_isLaunching = false;
};
