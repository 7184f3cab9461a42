#include "core/accounts/RivetUserProfile.h"

#include <QDir>
#include <QJsonDocument>

#include "base/LazySingleton.h"
#include "core/accounts/QueryUserInfo.h"
#include "core/foundation/Environment.h"
#include "core/foundation/JsonNumber.h"
#include "core/foundation/MCSettings.h"
#include "core/servers/RivetSettingInfo.h"
#include "support/coresupport/DirectoryNames.h"
#include "support/jsonfskit/Log.h"

namespace {

const QLatin1String tokenKey("ortoken");

QJsonObject userIn(const QJsonObject &answer)
{
    return answer[QLatin1String("oruser_profile")].toObject()[QLatin1String("user")].toObject();
}

} // namespace

RivetUserProfile::RivetUserProfile()
{
    RivetUserProfile::resetCurrentProfile();
}

RivetUserProfile::~RivetUserProfile() = default;

RivetUserProfile *RivetUserProfile::GetInstance()
{
    return LazySingleton<RivetUserProfile>::get();
}

void RivetUserProfile::setCurrentProfile(const QJsonObject &json)
{
    m_rawProfile = json;
    if (json[QLatin1String("code")].toString() != QLatin1String("1")) {
        const QByteArray text = QJsonDocument(json).toJson(QJsonDocument::Compact);
        Log::critical(QLatin1String("invalid user profile:") % QString::fromUtf8(text));
        return;
    }
    m_fields = readAnswer(json);
    m_externData[tokenKey] = orToken();
    UpdataRivetUserInfo();
}

void RivetUserProfile::resetCurrentProfile()
{
    m_fields = Fields();
    m_rawProfile = QJsonObject();
    const QString dataPath =
        Environment::GetInstance()->settings()->value(QStringLiteral("DataPath"), {}).toString();
    const QString skinsPath =
        QDir::cleanPath(dataPath) % QDir::separator() % QLatin1String(g_deploypath_skin_name);
    m_externData = QJsonObject{{tokenKey, QString()}, {QLatin1String("skinsPath"), skinsPath}};
}

RivetUserProfile::Fields RivetUserProfile::readAnswer(const QJsonObject &json)
{
    Fields fields;
    fields.user = json[QLatin1String("oruser")].toString();
    fields.orToken = json[tokenKey].toString();
    fields.login =
        json[QLatin1String("oruser_profile")].toObject()[QLatin1String("login")].toString();
    readNumbers(fields, userIn(json));
    readTexts(fields, userIn(json));
    fields.loginAuth = json[QLatin1String("loginAuth")].toString();
    return fields;
}

void RivetUserProfile::readNumbers(Fields &fields, const QJsonObject &user)
{
    const auto decimal = [&user](const char *key) {
        return user[QLatin1String(key)].toString().toUInt();
    };
    fields.bid = decimal("bid");
    fields.exp = decimal("exp");
    fields.expTotal = static_cast<quint32>(user[QLatin1String("expTotal")].toInt());
    fields.gender = decimal("gender");
    fields.sid = decimal("sid");
    fields.flower = decimal("flower");
    fields.level = decimal("level");
    fields.createTime = decimal("createTime");
    fields.status = decimal("status");
    fields.type = decimal("type");
    fields.bookCount = decimal("bookCount");
    fields.cardCount = decimal("cardCount");
    fields.achieve = decimal("achieve");
    fields.vip = decimal("vip");
    fields.nowTime = JsonNumber::wholePart(user[QLatin1String("nowTime")].toDouble());
}

void RivetUserProfile::readTexts(Fields &fields, const QJsonObject &user)
{
    const auto text = [&user](const char *key) { return user[QLatin1String(key)].toString(); };
    fields.email = text("email");
    fields.nickName = text("nickname");
    fields.levelName = text("levelName");
    fields.smallIcon = text("small");
    fields.middleIcon = text("middle");
    fields.icon48 = text("_48");
    fields.bigIcon = text("big");
    fields.normalIcon = text("normal");
    fields.thumbFileName = text("thumbFileName");
    fields.homeUrl = text("homeUrl");
}

void RivetUserProfile::UpdataRivetUserInfo()
{
    auto *query = new QueryUserInfo(this);
    connect(query, &QueryUserInfo::queryFinished, this, &RivetUserProfile::onReqUserInfoFinished);
    query->QueryUser(getBid());
}

void RivetUserProfile::onReqUserInfoFinished(bool bSucceed)
{
    if (!bSucceed) {
        Log::warning(QStringLiteral("request user failed!"));
        return;
    }
    auto *query = qobject_cast<QueryUserInfo *>(sender());
    if (!query)
        return;
    query->deleteLater();
    // An answer that was slow must not show the next user the money of the one before.
    if (getBid() != 0 && query->bid() != getBid())
        return;
    m_info = query->GetQueryUserInfo();
    Q_EMIT refreshProfile();
}

void RivetUserProfile::ModifyMoney(int delta)
{
    m_info.money += static_cast<quint32>(delta);
}

void RivetUserProfile::UpdateUserVipInfoCache(quint32 level, quint32 endTime, quint32 deadLine)
{
    m_info.vipLevel = static_cast<quint16>(level);
    m_info.vipEndTime = endTime;
    m_info.vipDaysLeft = static_cast<qint32>(deadLine);
    Q_EMIT refreshProfile();
}

quint32 RivetUserProfile::GetRealVipLevel() const
{
    return m_info.vipDaysLeft > 0 ? m_info.vipLevel : 0;
}

QVariantMap RivetUserProfile::userProfileJson() const
{
    return userIn(m_rawProfile).toVariantMap();
}

QVariantMap RivetUserProfile::userExternJson() const
{
    return m_externData.toVariantMap();
}

QVariantMap RivetUserProfile::joinServerBtnInfo() const
{
    RivetSettingInfo *settings = RivetSettingInfo::GetInstance();
    if (!settings || !settings->isInfoUpdated())
        return {};
    const std::shared_ptr<RivetBtnInfo> button =
        settings->getrivetButtonInfoByName(QStringLiteral("服主加盟"));
    if (!button)
        return {};
    return {
        {QStringLiteral("id"), button->id},         {QStringLiteral("type"), button->type},
        {QStringLiteral("name"), button->name},     {QStringLiteral("btnType"), button->btnType},
        {QStringLiteral("status"), button->status}, {QStringLiteral("link"), button->link},
        {QStringLiteral("text"), button->text}};
}

QVariantMap RivetUserProfile::GetRivetUserInfoJson() const
{
    return {{QStringLiteral("user_id"), m_info.userId},
            {QStringLiteral("gender"), int(m_info.gender)},
            {QStringLiteral("money"), m_info.money},
            {QStringLiteral("nickName"), m_info.nickName},
            {QStringLiteral("vip_level"), int(m_info.vipLevel)},
            {QStringLiteral("vip_expiredata"), m_info.vipEndTime},
            {QStringLiteral("vip_isExpire"), m_info.vipDaysLeft == 0}};
}
