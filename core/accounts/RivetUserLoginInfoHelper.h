#pragma once

#include <memory>

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include "base/RivetCoreExport.h"

class RivetUserList;
class UserFiles;
struct RivetUserSecurityLoginInfo;
template <typename Type>
class LazySingleton;

/// Remembers who has logged in on this machine.
///
/// A singleton until the at-exit manager runs, which is when it writes to disk. Main thread only.
class RIVETCORE_EXPORT RivetUserLoginInfoHelper : public QObject
{
    Q_OBJECT
public:
    /// Writes what has changed. A process that is killed meanwhile leaves the old or the new state.
    ~RivetUserLoginInfoHelper() override;

    static RivetUserLoginInfoHelper *GetInstance();

    /// Parks the record of a login that is under way.
    void UpdateLoginInfo(const QString &name, std::shared_ptr<RivetUserSecurityLoginInfo> info);
    /// Makes the parked record of @p name permanent: the service has accepted the login. An empty
    /// name is nobody's.
    void ApplyUpdatedLoginInfo(const QString &name);
    /// Reaches the disk only if @p name logs in as well.
    void UpdateAutoLoginInfo(const QString &name, bool autoLogin);
    /// Forgets @p name, on disk at once but for the list of names.
    void RemoveAccount(const QString &name);

    /// Never null; read from disk on the first call.
    std::shared_ptr<RivetUserList> GetRivetUserList();
    /// The list in the form that the host's pages see.
    Q_INVOKABLE QVariantMap getHistoricalLoginUserList();

protected:
    void LoadAllUserLoginInfo();
    void LoadLoginInfo(const QString &name);
    bool SaveLoginInfo(const QString &name);
    /// True as well if there is nothing to save.
    bool SaveAllUserLoginInfo();
    /// Writes the list of names alone, if a user has been removed.
    void SaveAllUserInfoAfterRemoveUser();

private:
    friend class LazySingleton<RivetUserLoginInfoHelper>;
    RivetUserLoginInfoHelper();

    bool readDirectory();

    const std::unique_ptr<UserFiles> m_files;
    const std::shared_ptr<RivetUserList> m_userList;
    QHash<QString, std::shared_ptr<RivetUserSecurityLoginInfo>> m_pendingRecords;
    QStringList m_namesToSave; ///< a name may be there more than once
    bool m_isLoaded = false;
    bool m_isUserRemoved = false; ///< since the last write of the list of names
};
