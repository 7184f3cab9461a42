#include "core/accounts/RivetUserSLInfoPersistent.h"

#include <QStringBuilder>

#include "base/Pickle.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "support/coresupport/QTAes.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace {

void logNotOpened(const QString &path)
{
    Log::critical(QLatin1String("open file ") % path % QLatin1String(" failed"));
}

} // namespace

bool RivetUserSLInfoPersistent::ReadFromFile(const QString &path, RivetUserSecurityLoginInfo &info)
{
    const std::optional<QByteArray> sealed = FS::readFile(path);
    if (!sealed) {
        logNotOpened(path);
        return false;
    }
    QByteArray plain;
    QTAes::DecryptByteArrayByCpuid(*sealed, plain);
    Pickle pickle;
    pickle.WriteBytes(plain.constData(), plain.size());
    return info.FromPickle(pickle);
}

bool RivetUserSLInfoPersistent::WriteToFile(const QString &path,
                                            const RivetUserSecurityLoginInfo &info)
{
    const std::optional<QByteArray> sealed = Seal(info);
    if (!sealed)
        return false;
    const FS::WriteResult result = FS::writePrivateFile(path, *sealed);
    if (result == FS::WriteResult::NotOpened)
        logNotOpened(path);
    return result == FS::WriteResult::Written;
}

std::optional<QByteArray> RivetUserSLInfoPersistent::Seal(const RivetUserSecurityLoginInfo &info)
{
    Pickle pickle;
    info.ToPickle(pickle);
    const QByteArray plain(pickle.payload(), static_cast<int>(pickle.payloadSize()));
    QByteArray sealed;
    if (QTAes::EncryptByteArrayByCpuid(plain, sealed) && !sealed.isEmpty())
        return sealed;
    Log::warning(QStringLiteral("encrypt buffer is empty"));
    return std::nullopt;
}
