#pragma once

#include <QString>

class QJsonObject;

/// The logged-in user as the rest of the core sees him: what the login service said of him. Empty
/// and 0 while nobody is logged in. Main thread.
class IRivetUserProfile
{
public:
    /// Takes a login answer over; one that is refused leaves all that can be asked for as it was.
    virtual void setCurrentProfile(const QJsonObject &json) = 0;
    virtual void resetCurrentProfile() = 0;

    virtual QString getUserName() = 0;
    /// The account id; 0 is nobody.
    virtual quint32 getBid() = 0;
    virtual QString getEmail() = 0;
    virtual QString getNickName() = 0;
    virtual quint32 getExp() = 0;
    virtual quint32 getExpTotal() = 0;
    virtual quint32 getGender() = 0;
    virtual quint32 getSid() = 0;
    virtual quint32 getFlower() = 0;
    virtual quint32 getLevel() = 0;
    virtual QString getLevelName() = 0;
    virtual quint64 getCreateTime() = 0;
    virtual quint32 getStatus() = 0;
    virtual quint32 getType() = 0;
    virtual quint32 getBookCount() = 0;
    virtual quint32 getCardCount() = 0;
    virtual quint32 getAchieve() = 0;
    virtual quint32 getVip() = 0;
    virtual QString getSmallIcon() = 0;
    virtual QString getMiddleIcon() = 0;
    virtual QString get48Icon() = 0;
    virtual QString getBigIcon() = 0;
    virtual QString getNormalIcon() = 0;
    virtual QString getThumbFileName() = 0;
    virtual QString getHomeUrl() = 0;
    virtual quint64 getNowTime() = 0;
    /// The same as getUserName().
    virtual QString userName() = 0;
    /// The token that later requests and the game use.
    virtual QString orToken() = 0;
    /// A further credential for the game.
    virtual QString loginAuth() = 0;

protected:
    /// Nobody owns a profile through this interface.
    ~IRivetUserProfile() = default;
};
