#include "host/OfflineLogins.h"

#include <QCryptographicHash>
#include <QFile>
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
    const QString file = fileOf(userName);
    return QTAes::EncryptByteArrayByCpuid(QJsonDocument(object).toJson(), record) &&
           FS::writeFile(file, record) &&
           QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
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

void OfflineLogins::forget(const QString &userName)
{
    FS::removeFile(fileOf(userName));
}
