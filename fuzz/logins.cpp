#include "fuzz/Fuzz.h"

#include "base/Pickle.h"
#include "base/RivetCoreAtExitManagerUtil.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserLoginInfoHelper.h"
#include "core/accounts/RivetUserSLInfoPersistent.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "core/foundation/BinaryJson.h"
#include "core/foundation/FSH.h"
#include "support/coresupport/QTAes.h"
#include "support/coresupport/QTDes.h"

namespace {

QByteArray payloadOf(const RivetUserSecurityLoginInfo &info)
{
    Pickle pickle;
    info.ToPickle(pickle);
    return QByteArray(pickle.payload(), int(pickle.payloadSize()));
}

void readRecord(const QByteArray &payload)
{
    QByteArray sealed, plain;
    fuzz::require(!QTAes::DecryptByteArrayByCpuid(payload, plain), "no foreign record opens");
    QTDes::DecryptByteArray(payload, plain);
    fuzz::require(QTAes::EncryptByteArrayByCpuid(payload, sealed), "a record can be sealed");
    fuzz::putFile("record", sealed);
    RivetUserSecurityLoginInfo info, copy;
    if (!RivetUserSLInfoPersistent::ReadFromFile(fuzz::path("record"), info))
        return;
    info.toJsonObject();
    const bool isKept = RivetUserSLInfoPersistent::WriteToFile(fuzz::path("record"), info) &&
                        RivetUserSLInfoPersistent::ReadFromFile(fuzz::path("record"), copy);
    fuzz::require(isKept && payloadOf(copy) == payloadOf(info), "a record is read back as written");
}

/// The list of users, or a save of it that was not finished.
void readList(const QByteArray &input, const QString &name)
{
    const QString users = FSH::localAppDataPath().mid(fuzz::folder().size() + 1) + "/users/";
    fuzz::putFile(users + name, BinaryJson::bytesOf(fuzz::objectIn(input)));
    if (BinaryJson::parse(input))
        fuzz::putFile(users + name, input);
    fuzz::putFile(users + "../keep", "x");
    const RivetCoreAtExitManagerUtil core;
    auto *helper = RivetUserLoginInfoHelper::GetInstance();
    helper->getHistoricalLoginUserList();
    const QStringList names = helper->GetRivetUserList()->users.keys();
    for (const QString &user : names) {
        fuzz::require(!user.isEmpty(), "a user has a name");
        helper->RemoveAccount(user);
    }
    const QString tree = fuzz::tree();
    fuzz::require(tree.contains("keep=78"), "to remove users removes nothing else");
    fuzz::require(tree.count('\n') == tree.count(users.chopped(1)) + users.count('/') - 1,
                  "all files of users lie in their folder");
}

} // namespace

/// Stored logins, the first letter telling which file.
void fuzz::takeInput(const QByteArray &input)
{
    switch (input.isEmpty() ? '\0' : input.front()) {
    case 'd':
        return readList(input.mid(1), "users.dat");
    case 's':
        return readList(input.mid(1), "users.dat.pending");
    default:
        return readRecord(input.mid(1));
    }
}
