#include "core/accounts/OrMCAuthenticateTask.h"

#include <QMetaEnum>
#include <QNetworkReply>

#include "support/coresupport/CCommonFunction.h"
#include "support/coresupport/IHttpRequestTask.h"
#include "support/jsonfskit/Exception.h"
#include "support/jsonfskit/Json.h"
#include "support/jsonfskit/Log.h"

namespace {

int codeIn(const QJsonObject &json)
{
    const QString key = QStringLiteral("code");
    const QJsonValue code = json[key];
    return code.isString() ? Json::requireString(code, key).toInt()
                           : Json::requireInteger(code, key);
}

QString errorName(int error)
{
    const char *name = QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(error);
    return name ? QString::fromLatin1(name) : QString::number(error);
}

} // namespace

OrMCAuthenticateTask::OrMCAuthenticateTask(QObject *parent) : OrMCAuthenticateTaskAbstract(parent)
{
}

OrMCAuthenticateTask::~OrMCAuthenticateTask()
{
    withdraw();
}

bool OrMCAuthenticateTask::hasRequest() const
{
    return m_request && (m_requestObject || !m_isRequestObject);
}

void OrMCAuthenticateTask::withdraw()
{
    if (hasRequest())
        m_request->SetSink(nullptr);
}

void OrMCAuthenticateTask::SetHttpRequestTask(IHttpRequestTask *request)
{
    if (request != m_request)
        withdraw();
    m_request = request;
    m_requestObject = dynamic_cast<QObject *>(request);
    m_isRequestObject = !m_requestObject.isNull();
    if (m_request)
        m_request->SetSink(this);
}

OrMCAuthenticateTask::AuthenticateStatus OrMCAuthenticateTask::GetAuthenticateStatus() const
{
    return m_status;
}

void OrMCAuthenticateTask::FillAuthSession(OrMCAuthSession &out)
{
    out = m_session;
}

void OrMCAuthenticateTask::onTaskRun()
{
    setAuthenticateStatus(AuthStatusNone);
    if (hasRequest())
        m_request->Start();
    else
        Log::critical(QStringLiteral("http request task pointer null when authenticate task run"));
}

void OrMCAuthenticateTask::httpRequestFinishedEx(unsigned short, int error, const QByteArray &data)
{
    if (error != 0) {
        Log::critical(QLatin1String("reply error = %1 when authenticate to oriel mc server") %
                      errorName(error));
        end(AuthStatusNetworkError);
        return;
    }
    int result = -1;
    try {
        const QString document = QStringLiteral("Document");
        QByteArray body = data;
        CCommonFunction::FilterJsonData(body);
        result = parseServerLoginResult(
            Json::requireObject(Json::requireDocument(body, document), document));
    } catch (const Exception &exception) {
        Log::critical(QStringLiteral("json data read failed when parse login mc server result"));
        Log::critical(exception.cause());
    } catch (...) {
        Log::warning(QStringLiteral("unknown exception!"));
    }
    switch (result) {
    case 1:
        return end(AuthStatusSucceeded);
    case 2:
        return end(AuthStatusLoggedInElsewhere);
    case 3:
        return end(AuthStatusAcceptedNoSession);
    case 5:
        return end(AuthStatusVersionTooOld);
    default:
        return end(AuthStatusUnknownError);
    }
}

int OrMCAuthenticateTask::parseServerLoginResult(const QJsonObject &json)
{
    int code = -1;
    try {
        code = codeIn(json);
        if (code != 1)
            return code;
        const auto text = [&](const QString &key) { return Json::requireString(json[key], key); };
        const QString token = text(QStringLiteral("token"));
        const QString name = text(QStringLiteral("pname"));
        const QString uuid = text(QStringLiteral("uuid"));
        if (token.isEmpty() || name.isEmpty() || uuid.isEmpty())
            return -1;
        m_session.SetSession(token);
        m_session.SetAccessToken(token);
        m_session.SetPlayerName(name);
        m_session.SetUUID(uuid);
    } catch (const Exception &exception) {
        Log::critical(exception.cause());
        return -1;
    } catch (...) {
        Log::warning(QStringLiteral("unknown exception!"));
    }
    return code;
}

void OrMCAuthenticateTask::setAuthenticateStatus(AuthenticateStatus status)
{
    m_status = status;
}

void OrMCAuthenticateTask::end(AuthenticateStatus status)
{
    setAuthenticateStatus(status);
    switch (status) {
    case AuthStatusSucceeded:
    case AuthStatusAcceptedNoSession:
        return emitSucceeded();
    case AuthStatusLoggedInElsewhere:
        return emitFailed(tr("your account maybe login elsewhere"));
    case AuthStatusVersionTooOld:
        return emitFailed(tr("product version needs to updated."));
    case AuthStatusNetworkError:
        return emitFailed(tr("can not connect to game server."));
    default:
        return emitFailed(tr("unknown authenticate error"));
    }
}
