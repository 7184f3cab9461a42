#include "core/accounts/RivetLoginHost.h"

#include <utility>

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QPointer>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/accounts/IEventCollect.h"
#include "core/accounts/IEventReportEx.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserProfile.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "core/foundation/Environment.h"
#include "core/foundation/MCSettings.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/ServiceUrls.h"
#include "support/jsonfskit/Log.h"

namespace {

constexpr char userNameProperty[] = "userName";

/// What is sent where there is no password; the service refuses it.
const QByteArray &noDigest()
{
    static const QByteArray zeros(16, '\0');
    return zeros;
}

QByteArray storedDigestOf(const QString &userName)
{
    const auto list = RivetUserLoginInfoHelper::GetInstance()->GetRivetUserList();
    if (const auto record = list->recordOf(userName))
        return record->passwordmd5;
    Log::critical(QLatin1String("something must be wrong. not login info for user ") % userName);
    return noDigest();
}

QString loginUrl(const QString &userName, const QByteArray &digest)
{
    const QString channel = Environment::GetInstance()
                                ->settings()
                                ->value(QStringLiteral("channel"), QStringLiteral("oriel"))
                                .toString();
    return QString::fromLatin1(g_rivet_login_url)
        .arg(userName, QString::fromLatin1(digest.toHex()), channel);
}

} // namespace

RivetLoginHost::RivetLoginHost() : m_manager(Environment::GetInstance()->getShareNetworkAccessMgr())
{
}

RivetLoginHost::~RivetLoginHost() = default;

RivetLoginHost *RivetLoginHost::GetInstance()
{
    return LazySingleton<RivetLoginHost>::get();
}

void RivetLoginHost::changeInitLoginState()
{
    if (m_status == LoginStatusInitial)
        m_status = LoginStatusLoggedOut;
}

void RivetLoginHost::setEventReporter(IEventCollect *collector, IEventReportEx *reporter)
{
    m_eventCollector = collector;
    m_eventReporter = reporter;
}

void RivetLoginHost::LogIn(const QString &userName, bool bAutoLogin, bool bSavePwd,
                           const QString &userPassword)
{
    if (m_status != LoginStatusInitial && m_status != LoginStatusLoggedOut) {
        Log::debug(QStringLiteral("filter invalid login event"));
        return;
    }
    const auto record = getSecurityLoginInfo(userName, bAutoLogin, bSavePwd, userPassword);
    RivetUserLoginInfoHelper::GetInstance()->UpdateLoginInfo(userName, record);
    m_userName = userName;
    send(loginUrl(userName, record->passwordmd5));
    updateLoginstatus(LoginStatusLoggingIn);
}

void RivetLoginHost::send(const QString &url)
{
    QNetworkReply *reply = ServiceRequest::get(*m_manager, url);
    reply->setProperty(userNameProperty, m_userName);
    connect(reply, &QNetworkReply::finished, this, &RivetLoginHost::onLoginFinish);
    // After a log-out in flight there still is one, whose end would pass for that of the new one.
    if (QNetworkReply *older = std::exchange(m_currentReply, reply)) {
        older->disconnect(this);
        older->abort();
        older->deleteLater();
    }
    m_isCancelAsked = false;
}

void RivetLoginHost::Cancel()
{
    if (!m_currentReply)
        return;
    m_isCancelAsked = true;
    m_currentReply->close();
}

void RivetLoginHost::LogOut()
{
    if (moveToLoggedOut())
        Q_EMIT logouted();
}

// The reply leaves its place before any signal goes out: a slot may start the next login.
void RivetLoginHost::onLoginFinish()
{
    QNetworkReply *reply = std::exchange(m_currentReply, nullptr);
    if (!reply)
        return;
    const bool isCancelAsked = std::exchange(m_isCancelAsked, false);
    reply->deleteLater();
    if (reply->error() == QNetworkReply::NoError)
        takeAnswer(reply->property(userNameProperty).toString(), reply->readAll());
    else
        takeError(*reply, isCancelAsked && reply->error() == QNetworkReply::OperationCanceledError);
}

void RivetLoginHost::takeError(const QNetworkReply &reply, bool isCancelled)
{
    const QString userName = reply.property(userNameProperty).toString();
    const auto *what = isCancelled ? "network operation canceled, " : "network error, ";
    Log::warning(QLatin1String(what) % ServiceRequest::errorTextOf(reply));
    if (!isCancelled)
        fail(userName, tr("network error"));
    else if (moveToLoggedOut())
        Q_EMIT canceled(userName);
}

void RivetLoginHost::takeAnswer(const QString &userName, const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (document.isEmpty()) {
        fail(userName, tr("internal error"));
        return;
    }
    RivetUserProfile *profile = RivetUserProfile::GetInstance();
    profile->setCurrentProfile(document.object());
    if (profile->getBid() != 0) {
        succeed(userName);
        return;
    }
    const QByteArray answer = QJsonDocument(document.object()).toJson(QJsonDocument::Compact);
    Log::critical(QLatin1String("invalid user profile:") % QString::fromUtf8(answer));
    fail(userName, tr("invalid user name or password"));
}

void RivetLoginHost::succeed(const QString &userName)
{
    if (!moveTo(LoginStatusLoggedIn))
        return;
    const QPointer<RivetLoginHost> self(this); // a slot may end the core
    Q_EMIT loginSuccess(m_loginPageInfo, userName);
    if (!self)
        return;
    RivetUserLoginInfoHelper::GetInstance()->ApplyUpdatedLoginInfo(userName);
    if (m_eventCollector)
        m_eventCollector->CollectEvent(1, 0, 0);
    if (m_eventReporter)
        m_eventReporter->ReportEvent(QString::number(RivetUserProfile::GetInstance()->getBid()),
                                     QStringLiteral("0"));
}

void RivetLoginHost::fail(const QString &userName, const QString &reason)
{
    if (moveToLoggedOut())
        Q_EMIT loginFailed(userName, reason);
}

bool RivetLoginHost::moveToLoggedOut()
{
    RivetUserProfile::GetInstance()->resetCurrentProfile();
    return moveTo(LoginStatusLoggedOut);
}

bool RivetLoginHost::moveTo(LoginStatus status)
{
    const QPointer<RivetLoginHost> self(this);
    updateLoginstatus(status);
    return !self.isNull();
}

std::shared_ptr<RivetUserSecurityLoginInfo>
RivetLoginHost::getSecurityLoginInfo(const QString &userName, bool bAutoLogin, bool bSavePwd,
                                     const QString &userPassword)
{
    auto record = std::make_shared<RivetUserSecurityLoginInfo>();
    if (userName.isEmpty()) {
        Log::critical(QStringLiteral("something must be wrong.user name is empty."));
        record->passwordmd5 = noDigest();
        return record;
    }
    if (userPassword == QLatin1String(storedPasswordMarker))
        record->passwordmd5 = storedDigestOf(userName);
    else
        record->passwordmd5 =
            QCryptographicHash::hash(userPassword.toLocal8Bit(), QCryptographicHash::Md5);
    record->autoLogin = bAutoLogin;
    record->savePassword = bAutoLogin || bSavePwd;
    return record;
}

void RivetLoginHost::updateLoginstatus(LoginStatus status)
{
    const LoginStatus old = std::exchange(m_status, status);
    if (old != status)
        Q_EMIT loginStatusChanged(old, status);
}
