#include "core/foundation/NetworkPolicy.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslError>

#include "support/jsonfskit/Log.h"

namespace {

void ignoreErrors(QNetworkReply *reply, const QList<QSslError> &errors)
{
    if (!reply)
        return;
    Log::debug(QStringLiteral("handleSslErrors: "));
    for (const QSslError &error : errors)
        Log::debug(QLatin1String("ssl error: ") % error.errorString());
    reply->ignoreSslErrors();
}

} // namespace

void NetworkPolicy::apply(QNetworkAccessManager &manager)
{
    manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    QObject::connect(&manager, &QNetworkAccessManager::sslErrors, &manager, &ignoreErrors);
}
