#pragma once

#include "base/RivetCoreExport.h"
#include "support/coresupport/TaskAbstract.h"

/// Common base of the steps of a launch and of the chain that runs them: a task with an error
/// number for the host.
///
/// Lives on the main thread. A failing step calls setError(), then emitFailed().
class RIVETCORE_EXPORT GameLaunchBase : public TaskAbstract
{
    Q_OBJECT
public:
    /// What went wrong. Hosts see the numbers, so they stay as they are; 10 to 12 are free.
    enum Error {
        ErrUnknown = 0,
        ErrUserCancel = 1,
        ErrResourceList = 2,
        ErrDownloadFailed = 3,
        ErrDownloadStopped = 4,
        ErrDeployFailed = 5,
        ErrStartFailed = 6,
        ErrGameCrashed = 7,
        ErrStartOther = 8,
        ErrStartUnknown = 9,
        ErrTampered = 13,
        ErrNeedLogin = 14,
    };
    Q_ENUM(Error)

    explicit GameLaunchBase(QObject *parent = nullptr);
    ~GameLaunchBase() override;

    /// What setError() was given last; ErrUnknown before.
    Error lastError() const;

public Q_SLOTS:
    /// Stores the error and emits error().
    void setError(GameLaunchBase::Error enError);

Q_SIGNALS:
    /// Comes before failed().
    void error(GameLaunchBase::Error enError);

private:
    Error m_error = ErrUnknown;
};
