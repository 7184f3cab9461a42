#pragma once

#include <memory>

#include <QJsonObject>
#include <QObject>

#include "base/RivetCoreExport.h"

/// One thing that the user can start from its description, with the chain of steps of this library.
///
/// The host implements it and holds it by std::shared_ptr; launch steps keep a std::weak_ptr and do
/// nothing once the object has gone. Main thread only. The library does not touch the two flags:
/// the concrete class sets them as a launch goes on.
class RIVETCORE_EXPORT MCInstanceObj : public QObject,
                                       public std::enable_shared_from_this<MCInstanceObj>
{
    Q_OBJECT
public:
    explicit MCInstanceObj(QObject *parent = nullptr);
    ~MCInstanceObj() override;

    /// Deployment tasks carry it, so that a step knows its own.
    virtual quint32 instanceId() = 0;
    /// The name to show. Nothing in this library asks for it.
    virtual QString instanceName() = 0;
    /// The name of the game client version that it runs.
    virtual QString clientVersion() = 0;
    /// Absolute path of its game directory.
    virtual QString instanceDir() = 0;

public Q_SLOTS:
    /// Builds the chain of steps for the launch that @p json describes, in a form of the host's
    /// own, and starts it.
    virtual void start(QJsonObject json) = 0;
    /// Aborts the chain.
    virtual void stop() = 0;

public:
    bool isRunning() const { return m_isRunning; }
    void setRunning(bool isRunning) { m_isRunning = isRunning; }
    bool isLaunching() const { return m_isLaunching; }
    void setLaunching(bool isLaunching) { m_isLaunching = isLaunching; }

private:
    bool m_isRunning = false;
    bool m_isLaunching = false;
};
