#include "core/accounts/RivetUserSecurityLoginInfo.h"

#include <QDateTime>

#include "base/Pickle.h"
#include "base/PickleIterator.h"

void RivetUserSecurityLoginInfo::Reset()
{
    *this = RivetUserSecurityLoginInfo();
}

void RivetUserSecurityLoginInfo::UpdateLastLoginTime()
{
    lastLoginTime = static_cast<quint64>(QDateTime::currentMSecsSinceEpoch() / 1000);
}

void RivetUserSecurityLoginInfo::ToPickle(Pickle &pickle) const
{
    pickle.WriteData(passwordmd5.constData(), passwordmd5.size());
    pickle.WriteUInt64(lastLoginTime);
    pickle.WriteBool(savePassword);
    pickle.WriteBool(autoLogin);
}

bool RivetUserSecurityLoginInfo::FromPickle(Pickle &pickle)
{
    constexpr int md5Bytes = 16;
    PickleIterator fields(pickle);
    const char *digest = nullptr;
    int length = 0;
    if (!fields.ReadData(&digest, &length) || length != md5Bytes)
        return false;
    passwordmd5 = QByteArray(digest, length);
    return fields.ReadUInt64(&lastLoginTime) && fields.ReadBool(&savePassword) &&
           fields.ReadBool(&autoLogin);
}

QJsonObject RivetUserSecurityLoginInfo::toJsonObject() const
{
    // The pages expect the bytes as a text that ends at the first zero, whatever comes of them.
    const auto length =
        static_cast<int>(qstrnlen(passwordmd5.constData(), static_cast<uint>(passwordmd5.size())));
    return {{QLatin1String("passwordmd5"), QString::fromUtf8(passwordmd5.constData(), length)},
            {QLatin1String("lastLoginTime"), QString::number(lastLoginTime)},
            {QLatin1String("savePassword"), savePassword},
            {QLatin1String("autoLogin"), autoLogin}};
}
