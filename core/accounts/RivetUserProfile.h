#pragma once

#include <QJsonObject>
#include <QObject>
#include <QVariantMap>

#include "base/RivetCoreExport.h"
#include "core/accounts/IRivetUserProfile.h"
#include "core/accounts/RivetUserInfo.h"

template <typename Type>
class LazySingleton;

/// Everything that the core knows of the logged-in user.
///
/// A singleton until the at-exit manager runs. Main thread only. It is filled from the login
/// answer; money and VIP data follow from the user-info service, which refreshProfile() tells.
/// Those outlive a log-out: the query of the next login replaces them.
class RIVETCORE_EXPORT RivetUserProfile : public QObject, public IRivetUserProfile
{
    Q_OBJECT
    Q_PROPERTY(QString userName READ userName)
public:
    ~RivetUserProfile() override;

    static RivetUserProfile *GetInstance();

    /// Starts the query for money and VIP data of an accepted answer, too.
    void setCurrentProfile(const QJsonObject &json) override;
    void resetCurrentProfile() override;

    /// Asks the user-info service. A failure is on the log only.
    void UpdataRivetUserInfo();
    /// Tells nobody.
    void ModifyMoney(int delta);
    void UpdateUserVipInfoCache(quint32 level, quint32 endTime, quint32 deadLine);

    QString getUserName() override { return m_fields.login; }
    quint32 getBid() override { return m_fields.bid; }
    QString getEmail() override { return m_fields.email; }
    QString getNickName() override { return m_fields.nickName; }
    quint32 getExp() override { return m_fields.exp; }
    quint32 getExpTotal() override { return m_fields.expTotal; }
    quint32 getGender() override { return m_fields.gender; }
    quint32 getSid() override { return m_fields.sid; }
    quint32 getFlower() override { return m_fields.flower; }
    quint32 getLevel() override { return m_fields.level; }
    QString getLevelName() override { return m_fields.levelName; }
    quint64 getCreateTime() override { return m_fields.createTime; }
    quint32 getStatus() override { return m_fields.status; }
    quint32 getType() override { return m_fields.type; }
    quint32 getBookCount() override { return m_fields.bookCount; }
    quint32 getCardCount() override { return m_fields.cardCount; }
    quint32 getAchieve() override { return m_fields.achieve; }
    quint32 getVip() override { return m_fields.vip; }
    QString getSmallIcon() override { return m_fields.smallIcon; }
    QString getMiddleIcon() override { return m_fields.middleIcon; }
    QString get48Icon() override { return m_fields.icon48; }
    QString getBigIcon() override { return m_fields.bigIcon; }
    QString getNormalIcon() override { return m_fields.normalIcon; }
    QString getThumbFileName() override { return m_fields.thumbFileName; }
    QString getHomeUrl() override { return m_fields.homeUrl; }
    quint64 getNowTime() override { return m_fields.nowTime; }
    QString userName() override { return m_fields.login; }
    QString orToken() override { return m_fields.orToken; }
    QString loginAuth() override { return m_fields.loginAuth; }

    RivetUserInfo GetRivetUserInfo() const { return m_info; }
    /// 0 once the VIP days are over.
    quint32 GetRealVipLevel() const;
    /// What the service said of the user in the last answer, also in a refused one.
    Q_INVOKABLE QVariantMap userProfileJson() const;
    /// "ortoken" and "skinsPath".
    Q_INVOKABLE QVariantMap userExternJson() const;
    /// The button by which a server owner joins the service; empty while there is none, and until
    /// the setting information is there.
    Q_INVOKABLE QVariantMap joinServerBtnInfo() const;

public Q_SLOTS:
    /// The form that the host's pages take.
    QVariantMap GetRivetUserInfoJson() const;

Q_SIGNALS:
    /// Money or VIP data have changed.
    void refreshProfile();

private Q_SLOTS:
    void onReqUserInfoFinished(bool bSucceed);

private:
    friend class LazySingleton<RivetUserProfile>;
    RivetUserProfile();

    struct Fields
    {
        QString user;
        QString orToken;
        QString loginAuth;
        QString login;
        QString email;
        QString nickName;
        QString levelName;
        QString smallIcon;
        QString middleIcon;
        QString icon48;
        QString bigIcon;
        QString normalIcon;
        QString thumbFileName;
        QString homeUrl;
        quint32 bid = 0;
        quint32 exp = 0;
        quint32 expTotal = 0;
        quint32 gender = 0;
        quint32 sid = 0;
        quint32 flower = 0;
        quint32 level = 0;
        quint32 status = 0;
        quint32 type = 0;
        quint32 bookCount = 0;
        quint32 cardCount = 0;
        quint32 achieve = 0;
        quint32 vip = 0;
        quint64 createTime = 0;
        quint64 nowTime = 0;
    };
    static Fields readAnswer(const QJsonObject &json);
    static void readNumbers(Fields &fields, const QJsonObject &user);
    static void readTexts(Fields &fields, const QJsonObject &user);

    Fields m_fields;
    QJsonObject m_rawProfile; ///< the last answer as a whole, also a refused one
    QJsonObject m_externData;
    RivetUserInfo m_info;
};
