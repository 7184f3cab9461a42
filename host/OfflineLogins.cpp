#include "host/OfflineLogins.h"

#include <QCryptographicHash>
#include <QJsonDocument>

#include "core/foundation/FSH.h"
#include "support/coresupport/QTAes.h"
#include "support/jsonfskit/FS.h"

namespace {

/// Names become digests, so that none of them leaves the folder or meets another one.
QString fileOf(const QString &userName)
{
    const QByteArray digest =
        QCryptographicHash::hash(userName.toUtf8(), QCryptographicHash::Sha1).toHex();
    return FSH::localAppDataPath() % QLatin1String("/offline/") % QString::fromLatin1(digest) %
           QLatin1String(".dat");
}

QJsonObject toJson(const OrMCAuthSession &session)
{
    return {{QStringLiteral("bid"), double(session.GetCurrentOrBid())},
            {QStringLiteral("session"), session.GetSession()},
            {QStringLiteral("token"), session.GetAccessToken()},
            {QStringLiteral("player"), session.GetPlayerName()},
            {QStringLiteral("uuid"), session.GetUUID()}};
}

OrMCAuthSession sessionIn(const QJsonObject &object)
{
    OrMCAuthSession session;
    session.SetCurrentOrBid(static_cast<unsigned>(object[QStringLiteral("bid")].toDouble()));
    session.SetSession(object[QStringLiteral("session")].toString());
    session.SetAccessToken(object[QStringLiteral("token")].toString());
    session.SetPlayerName(object[QStringLiteral("player")].toString());
    session.SetUUID(object[QStringLiteral("uuid")].toString());
    return session;
}

} // namespace

bool OfflineLogins::keep(const QString &userName, const Login &login)
{
    const QJsonObject object{{QStringLiteral("answer"), login.answer},
                             {QStringLiteral("session"), toJson(login.session)}};
    QByteArray record;
    return QTAes::EncryptByteArrayByCpuid(QJsonDocument(object).toJson(), record) &&
           FS::writePrivateFile(fileOf(userName), record) == FS::WriteResult::Written;
}

std::optional<OfflineLogins::Login> OfflineLogins::of(const QString &userName)
{
    const std::optional<QByteArray> record = FS::readFile(fileOf(userName));
    QByteArray text;
    if (!record || !QTAes::DecryptByteArrayByCpuid(*record, text))
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    return Login{object[QStringLiteral("answer")].toObject(),
                 sessionIn(object[QStringLiteral("session")].toObject())};
}

bool OfflineLogins::forget(const QString &userName)
{
    return bool(FS::removeFile(fileOf(userName)));
}
