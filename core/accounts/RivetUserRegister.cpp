#include "core/accounts/RivetUserRegister.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

#include "base/LazySingleton.h"
#include "core/foundation/CachedAnswer.h"
#include "core/foundation/Environment.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr char userNameProperty[] = "userName";
constexpr char passwordProperty[] = "password";

bool isZero(const QJsonValue &code)
{
    if (!code.isString())
        return code.toInt(-1) == 0;
    bool isNumber = false;
    return code.toString().toInt(&isNumber) == 0 && isNumber;
}

/// The name up to its last "@", or the whole one if there is none.
QString displayNameOf(const QString &userName)
{
    const QString name = userName.left(userName.lastIndexOf(QLatin1Char('@')) + 1);
    return name.isEmpty() ? userName : name;
}

} // namespace

RivetUserRegister::RivetUserRegister() = default;

RivetUserRegister::~RivetUserRegister() = default;

RivetUserRegister *RivetUserRegister::GetInstance()
{
    return LazySingleton<RivetUserRegister>::get();
}

void RivetUserRegister::registerAccount(const QString &userName, const QString &password,
                                        const QString &verifyCode)
{
    if (userName.isEmpty()) {
        Q_EMIT registerFailed(userName, tr("username should not empty"));
    } else if (password.isEmpty()) {
        Q_EMIT registerFailed(userName, tr("password should not empty"));
    } else if (verifyCode.isEmpty()) {
        Q_EMIT registerFailed(userName, tr("verify code should not empty"));
    } else {
        const QString url = QString::fromLatin1(g_rivet_verify_code_url).arg(userName, verifyCode);
        QNetworkReply *reply = send(url, userName);
        reply->setProperty(passwordProperty, password);
        connect(reply, &QNetworkReply::finished, this, &RivetUserRegister::onVerifyCodeFinished);
    }
}

void RivetUserRegister::onVerifyCodeFinished()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply) {
        Log::critical(QStringLiteral("not expected error"));
        return;
    }
    reply->deleteLater();
    const QString userName = reply->property(userNameProperty).toString();
    if (!isAccepted(*reply, userName))
        return;
    const QString url = QString::fromLatin1(g_rivet_register_url)
                            .arg(userName, reply->property(passwordProperty).toString(),
                                 displayNameOf(userName), QStringLiteral("1"));
    connect(send(url, userName), &QNetworkReply::finished, this,
            &RivetUserRegister::onRegisterAccountFinished);
}

void RivetUserRegister::onRegisterAccountFinished()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply) {
        Log::critical(QStringLiteral("not expected error."));
        return;
    }
    reply->deleteLater();
    const QString userName = reply->property(userNameProperty).toString();
    if (isAccepted(*reply, userName))
        Q_EMIT registerSuccess(userName);
}

QNetworkReply *RivetUserRegister::send(const QString &url, const QString &userName)
{
    const auto manager = Environment::GetInstance()->getShareNetworkAccessMgr();
    QNetworkReply *reply = ServiceRequest::get(*manager, url);
    reply->setProperty(userNameProperty, userName);
    return reply;
}

/// Tells a refusal and every other failure itself.
bool RivetUserRegister::isAccepted(QNetworkReply &reply, const QString &userName)
{
    if (reply.error() != QNetworkReply::NoError) {
        Q_EMIT registerFailed(userName, tr("network error"));
        return false;
    }
    const QJsonObject answer = QJsonDocument::fromJson(CachedAnswer::filteredBody(reply)).object();
    if (answer.isEmpty()) {
        Q_EMIT registerFailed(userName, tr("internal error"));
        return false;
    }
    if (isZero(answer[QLatin1String("code")]))
        return true;
    Q_EMIT registerFailed(userName, answer[QLatin1String("msg")].toString());
    return false;
}
