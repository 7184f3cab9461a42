#include "core/accounts/PendingSave.h"

#include <optional>

#include <QJsonArray>

#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserSLInfoPersistent.h"
#include "core/accounts/UserFiles.h"
#include "core/foundation/BinaryJson.h"
#include "support/jsonfskit/FS.h"

namespace PendingSave {

namespace {

const QLatin1String directoryKey("directory");
const QLatin1String recordsKey("records");

bool write(const QString &path, const QByteArray &data)
{
    return FS::writePrivateFile(path, data) == FS::WriteResult::Written;
}

bool writeAll(UserFiles &files, const QJsonObject &save)
{
    bool isWhole = write(files.usersFile(), BinaryJson::bytesOf(save[directoryKey].toObject()));
    const QJsonObject records = save[recordsKey].toObject();
    for (auto record = records.begin(); record != records.end(); ++record) {
        const QByteArray sealed = QByteArray::fromBase64(record.value().toString().toLatin1());
        files.lookAgain();
        isWhole = write(files.recordOf(record.key()), sealed) && isWhole;
    }
    return isWhole;
}

} // namespace

QJsonObject directoryOf(const RivetUserList &list)
{
    return {{QLatin1String("users"), QJsonArray::fromStringList(list.users.keys())},
            {QLatin1String("lastLogin"), list.lastLoginUser}};
}

// Where it can't be written, the save itself will say so.
void begin(const UserFiles &files, const RivetUserList &list, const QStringList &names)
{
    QJsonObject records;
    for (const QString &name : names) {
        const auto record = list.recordOf(name);
        const auto sealed = record ? RivetUserSLInfoPersistent::Seal(*record) : std::nullopt;
        if (sealed)
            records[name] = QString::fromLatin1(sealed->toBase64());
    }
    const QJsonObject save{{directoryKey, directoryOf(list)}, {recordsKey, records}};
    const bool isNoted = write(files.pendingSaveFile(), BinaryJson::bytesOf(save));
    Q_UNUSED(isNoted)
}

void end(const UserFiles &files)
{
    const bool isGone(FS::removeFile(files.pendingSaveFile()));
    Q_UNUSED(isGone) // a failure is on the log
}

void finish(UserFiles &files)
{
    const std::optional<QJsonObject> save = BinaryJson::readFile(files.pendingSaveFile());
    if (save && save->contains(directoryKey) && writeAll(files, *save))
        end(files);
}

} // namespace PendingSave
