#pragma once

#include <QObject>
#include <QString>

#include "base/RivetCoreExport.h"

class QNetworkReply;
template <typename Type>
class LazySingleton;

/// Makes new accounts: the verification code is checked first, then the account is asked for.
///
/// A singleton until the at-exit manager runs. Main thread only. Each call stands alone; several
/// may be under way. A new account is not logged in.
class RIVETCORE_EXPORT RivetUserRegister : public QObject
{
    Q_OBJECT
public:
    ~RivetUserRegister() override;

    static RivetUserRegister *GetInstance();

    /// Ends in registerSuccess() or registerFailed(), at once if a text is empty.
    Q_INVOKABLE void registerAccount(const QString &userName, const QString &password,
                                     const QString &verifyCode);

Q_SIGNALS:
    void registerSuccess(QString userName);
    /// @p descString is a text for the user; empty where the service refuses without one.
    void registerFailed(QString userName, QString descString);

protected Q_SLOTS:
    void onVerifyCodeFinished();
    void onRegisterAccountFinished();

private:
    friend class LazySingleton<RivetUserRegister>;
    RivetUserRegister();

    QNetworkReply *send(const QString &url, const QString &userName);
    bool isAccepted(QNetworkReply &reply, const QString &userName);
};
