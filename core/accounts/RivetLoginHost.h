#pragma once

#include <memory>

#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"

class IEventCollect;
class IEventReportEx;
class QNetworkAccessManager;
class QNetworkReply;
struct RivetUserSecurityLoginInfo;
template <typename Type>
class LazySingleton;

/// The one place where a user logs in and out.
///
/// A singleton until the at-exit manager runs. Main thread only. One login is in flight at most; a
/// user who is logged in has to log out before the next login is taken. An accepted login fills
/// RivetUserProfile and, once loginSuccess() has gone out, the stored logins. A slot of any signal
/// may end the core.
class RIVETCORE_EXPORT RivetLoginHost : public QObject
{
    Q_OBJECT
public:
    enum LoginStatus : quint32 {
        LoginStatusInitial = 0,
        LoginStatusLoggedOut = 1,
        LoginStatusLoggingIn = 2,
        LoginStatusLoggedIn = 3,
    };

    /// As a password it asks for the one that is stored for the user.
    static constexpr char storedPasswordMarker[] = "orielKeepPw";

    /// A request in flight is left alone and reports to nobody.
    ~RivetLoginHost() override;

    static RivetLoginHost *GetInstance();

    /// From LoginStatusInitial to LoginStatusLoggedOut, without a signal.
    void changeInitLoginState();
    /// A text of the host's own, which comes back in loginSuccess().
    void setLoginPageInfo(const QString &pageInfo) { m_loginPageInfo = pageInfo; }
    /// Both may be null; neither is owned.
    void setEventReporter(IEventCollect *collector, IEventReportEx *reporter);

    quint32 status() const { return m_status; }

public Q_SLOTS:
    /// Ends in loginSuccess(), loginFailed() or canceled(). Does nothing while a login is in flight
    /// or somebody is logged in. @p bAutoLogin remembers the password as well.
    void LogIn(const QString &userName, bool bAutoLogin, bool bSavePwd,
               const QString &userPassword = QString::fromLatin1(storedPasswordMarker));
    /// Ends the login in flight, if there is one, in canceled().
    void Cancel();
    /// Leaves a login in flight alone: if that is accepted, its user is logged in after all.
    void LogOut();

Q_SIGNALS:
    void loginSuccess(QString pageInfo, QString userName);
    /// @p errString is a text for the user.
    void loginFailed(QString userName, QString errString);
    void canceled(QString userName);
    void logouted();
    void loginStatusChanged(uint oldStatus, uint newStatus);

protected Q_SLOTS:
    void onLoginFinish();

protected:
    /// A new record with what the user asked for; its digest is of zeros where there is none.
    std::shared_ptr<RivetUserSecurityLoginInfo> getSecurityLoginInfo(const QString &userName,
                                                                     bool bAutoLogin, bool bSavePwd,
                                                                     const QString &userPassword);
    void updateLoginstatus(LoginStatus status);

private:
    friend class LazySingleton<RivetLoginHost>;
    RivetLoginHost();

    void send(const QString &url);
    void takeError(const QNetworkReply &reply, bool isCancelled);
    void takeAnswer(const QString &userName, const QByteArray &body);
    void succeed(const QString &userName);
    void fail(const QString &userName, const QString &reason);
    /// False if a slot of loginStatusChanged() has ended the core, and this object with it.
    [[nodiscard]] bool moveTo(LoginStatus status);
    [[nodiscard]] bool moveToLoggedOut(); ///< the same, and forgets the profile

    QNetworkReply *m_currentReply = nullptr; ///< owned by the manager
    std::shared_ptr<QNetworkAccessManager> m_manager;
    LoginStatus m_status = LoginStatusInitial;
    QString m_userName;
    QString m_loginPageInfo;
    IEventCollect *m_eventCollector = nullptr;
    IEventReportEx *m_eventReporter = nullptr;
    /// Qt reports a request that was silent for too long like one that was cancelled.
    bool m_isCancelAsked = false;
};
