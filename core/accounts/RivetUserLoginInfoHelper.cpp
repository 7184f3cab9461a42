#include "core/accounts/RivetUserLoginInfoHelper.h"

#include <utility>

#include <QJsonArray>
#include <QJsonObject>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/accounts/PendingSave.h"
#include "core/accounts/RivetUserList.h"
#include "core/accounts/RivetUserSLInfoPersistent.h"
#include "core/accounts/RivetUserSecurityLoginInfo.h"
#include "core/accounts/UserFiles.h"
#include "core/foundation/BinaryJson.h"
#include "core/foundation/FSH.h"
#include "support/jsonfskit/FS.h"
#include "support/jsonfskit/Log.h"

namespace {

FS::WriteResult writeDirectory(const UserFiles &files, const RivetUserList &list)
{
    const QByteArray bytes = BinaryJson::bytesOf(PendingSave::directoryOf(list));
    return FS::writePrivateFile(files.usersFile(), bytes);
}

} // namespace

RivetUserLoginInfoHelper::RivetUserLoginInfoHelper()
    : m_files(std::make_unique<UserFiles>(FSH::localAppDataPath())),
      m_userList(std::make_shared<RivetUserList>())
{
}

RivetUserLoginInfoHelper::~RivetUserLoginInfoHelper()
{
    SaveAllUserLoginInfo();
    SaveAllUserInfoAfterRemoveUser();
}

RivetUserLoginInfoHelper *RivetUserLoginInfoHelper::GetInstance()
{
    return LazySingleton<RivetUserLoginInfoHelper>::get();
}

void RivetUserLoginInfoHelper::UpdateLoginInfo(const QString &name,
                                               std::shared_ptr<RivetUserSecurityLoginInfo> info)
{
    m_pendingRecords[name] = std::move(info);
}

// The list is loaded first: what is written at the end would else know the users of this run only.
void RivetUserLoginInfoHelper::ApplyUpdatedLoginInfo(const QString &name)
{
    const std::shared_ptr<RivetUserSecurityLoginInfo> record = m_pendingRecords.value(name);
    if (!record || name.isEmpty())
        return;
    record->UpdateLastLoginTime();
    const std::shared_ptr<RivetUserList> list = GetRivetUserList();
    list->users[name] = record;
    list->lastLoginUser = name;
    m_namesToSave << name;
}

void RivetUserLoginInfoHelper::UpdateAutoLoginInfo(const QString &name, bool autoLogin)
{
    if (const auto record = GetRivetUserList()->recordOf(name))
        record->autoLogin = autoLogin;
}

void RivetUserLoginInfoHelper::RemoveAccount(const QString &name)
{
    if (GetRivetUserList()->users.remove(name) == 0)
        return;
    m_isUserRemoved = true;
    m_files->lookAgain();
    const QString folder = m_files->folderOf(name);
    if (!folder.isEmpty() && !FS::removeTree(folder))
        Log::warning(QLatin1String("remove user: ") % name %
                     QLatin1String(" account local cache failed"));
}

std::shared_ptr<RivetUserList> RivetUserLoginInfoHelper::GetRivetUserList()
{
    if (!m_isLoaded) {
        m_isLoaded = true;
        LoadAllUserLoginInfo();
    }
    return m_userList;
}

QVariantMap RivetUserLoginInfoHelper::getHistoricalLoginUserList()
{
    const std::shared_ptr<RivetUserList> list = GetRivetUserList();
    if (!list) {
        Log::critical(QStringLiteral("get rivet user list failed, return empty user list."));
        return {};
    }
    return list->toJsonObject().toVariantMap();
}

void RivetUserLoginInfoHelper::LoadAllUserLoginInfo()
{
    PendingSave::finish(*m_files);
    if (!readDirectory())
        return;
    m_files->lookAgain();
    const QStringList names = m_userList->users.keys();
    for (const QString &name : names)
        LoadLoginInfo(name);
}

/// False if there are no users.
bool RivetUserLoginInfoHelper::readDirectory()
{
    const QJsonObject directory =
        BinaryJson::readFile(m_files->usersFile()).value_or(QJsonObject());
    const QJsonArray names = directory[QLatin1String("users")].toArray();
    for (const QJsonValue &name : names) {
        if (!name.toString().isEmpty())
            m_userList->users[name.toString()] = nullptr;
    }
    if (m_userList->users.isEmpty())
        return false;
    m_userList->lastLoginUser = directory[QLatin1String("lastLogin")].toString();
    if (m_userList->lastLoginUser.isEmpty())
        m_userList->lastLoginUser = m_userList->users.cbegin().key();
    return true;
}

void RivetUserLoginInfoHelper::LoadLoginInfo(const QString &name)
{
    RivetUserSecurityLoginInfo record;
    if (RivetUserSLInfoPersistent::ReadFromFile(m_files->recordOf(name), record))
        m_userList->users[name] = std::make_shared<RivetUserSecurityLoginInfo>(record);
    else
        Log::warning(QStringLiteral("read user login info from file failed"));
}

bool RivetUserLoginInfoHelper::SaveLoginInfo(const QString &name)
{
    const auto record = m_userList->recordOf(name);
    // The folder of a user who was saved just before may be this one in another spelling.
    m_files->lookAgain();
    const QString path = m_files->recordOf(name);
    return record && !path.isEmpty() && RivetUserSLInfoPersistent::WriteToFile(path, *record);
}

bool RivetUserLoginInfoHelper::SaveAllUserLoginInfo()
{
    if (m_namesToSave.isEmpty())
        return true;
    m_isUserRemoved = false;
    PendingSave::begin(*m_files, *m_userList, m_namesToSave);
    const FS::WriteResult result = writeDirectory(*m_files, *m_userList);
    bool isSaved = result != FS::WriteResult::NotOpened;
    if (result == FS::WriteResult::NotOpened)
        Log::warning(QStringLiteral("open users data file failed!!"));
    if (result == FS::WriteResult::NotWritten)
        Log::warning(QStringLiteral("write users data failed!!!"));
    if (result != FS::WriteResult::NotOpened) {
        for (const QString &name : m_namesToSave)
            isSaved = SaveLoginInfo(name) && isSaved;
    }
    PendingSave::end(*m_files);
    return isSaved;
}

void RivetUserLoginInfoHelper::SaveAllUserInfoAfterRemoveUser()
{
    if (!m_isUserRemoved)
        return;
    // An unfinished save of an earlier process would bring the removed user back.
    PendingSave::end(*m_files);
    if (writeDirectory(*m_files, *m_userList) == FS::WriteResult::Written)
        m_isUserRemoved = false;
}
