#pragma once

#include <QJsonObject>
#include <QPointer>

#include "base/RivetCoreExport.h"
#include "core/accounts/OrMCAuthSession.h"
#include "support/coresupport/IHttpRequestSinkEx.h"
#include "support/coresupport/OrMCAuthenticateTaskAbstract.h"

/// Turns the answer of the game authentication service into a session.
///
/// One task serves one exchange, on the thread that starts it. The host builds the request, with
/// URL, time-out and network manager; the answer is a JSON object with "code" and, for code 1,
/// "token", "pname" and "uuid". Status and session are set before finished() goes out; failReason()
/// is the text for the user.
class RIVETCORE_EXPORT OrMCAuthenticateTask : public OrMCAuthenticateTaskAbstract,
                                              public IHttpRequestSinkEx
{
    Q_OBJECT
public:
    explicit OrMCAuthenticateTask(QObject *parent = nullptr);
    /// Withdraws from a request that is still there: it then reports to nobody.
    ~OrMCAuthenticateTask() override;

    /// Must be called before start(): without a request the task does not end. @p request is not
    /// owned. One that is no QObject has to outlive the task.
    void SetHttpRequestTask(IHttpRequestTask *request) override;
    AuthenticateStatus GetAuthenticateStatus() const override;
    /// Leaves the current bid at 0, for the answer does not tell it: the host sets it.
    void FillAuthSession(OrMCAuthSession &out) override;

    void httpRequestFinishedEx(unsigned short id, int error, const QByteArray &data) override;

protected:
    void onTaskRun() override;

private:
    /// The "code" of the answer; -1 if it is not to be had, or code 1 comes with a value missing.
    int parseServerLoginResult(const QJsonObject &json);
    void setAuthenticateStatus(AuthenticateStatus status);
    void end(AuthenticateStatus status);
    bool hasRequest() const;
    void withdraw();

    IHttpRequestTask *m_request = nullptr;
    QPointer<QObject> m_requestObject; ///< the same, if it is a QObject: tells whether it has gone
    bool m_isRequestObject = false;
    AuthenticateStatus m_status = AuthStatusNone;
    OrMCAuthSession m_session;
};
