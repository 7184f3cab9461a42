#pragma once

#include "support/coresupport/TaskAbstract.h"

class IHttpRequestTask;
class OrMCAuthSession;

/// A task that turns the answer of the game authentication service into a game session.
class CORESUPPORT_EXPORT OrMCAuthenticateTaskAbstract : public TaskAbstract
{
    Q_OBJECT
public:
    enum AuthenticateStatus {
        AuthStatusNone = 0, ///< not finished, or never started
        AuthStatusUnknownError = 1,
        AuthStatusSucceeded = 2,
        AuthStatusLoggedInElsewhere = 3,
        AuthStatusAcceptedNoSession = 4, ///< the service lets the player in without a session
        AuthStatusVersionTooOld = 5,
        AuthStatusNetworkError = 6,
    };
    Q_ENUM(AuthenticateStatus)

    explicit OrMCAuthenticateTaskAbstract(QObject *parent = nullptr);
    ~OrMCAuthenticateTaskAbstract() override;

    /// Gives the request that the task starts and listens to. Not owned.
    virtual void SetHttpRequestTask(IHttpRequestTask *request) = 0;
    virtual AuthenticateStatus GetAuthenticateStatus() const = 0;
    /// Copies the session to @p out.
    virtual void FillAuthSession(OrMCAuthSession &out) = 0;
};
