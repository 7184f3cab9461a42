#include "core/store/BuyRequest.h"

#include <QNetworkReply>
#include <QPointer>

#include "core/accounts/RivetUserProfile.h"
#include "core/foundation/ServiceAnswer.h"
#include "core/foundation/ServiceRequest.h"
#include "core/store/MyPropListInfo.h"
#include "core/store/StoreAnswer.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"

namespace {

void becomeVip(const StoreProp &prop, const QJsonObject &json)
{
    const quint32 endTime = ServiceAnswer::time(json, "expiryData");
    const auto daysLeft = static_cast<quint32>(ServiceAnswer::number(json, "deadLine"));
    const QPointer<RivetUserProfile> profile(RivetUserProfile::GetInstance());
    profile->UpdateUserVipInfoCache(static_cast<quint32>(prop.vipLevel), endTime, daysLeft);
    if (!profile)
        return; // a slot of refreshProfile() has ended the core
    profile->UpdataRivetUserInfo();
    MyPropListInfo::GetInstance()->UpdateList();
}

} // namespace

BuyRequest::BuyRequest(QObject *parent) : QObject(parent) {}

BuyRequest::~BuyRequest() = default;

void BuyRequest::BuyProp(unsigned int bid, unsigned int propId, unsigned int normType,
                         unsigned int price)
{
    if (m_isBusy)
        return;
    const ServiceRequest::SignedQuery query = ServiceRequest::signedQuery(bid);
    const QString url =
        QString::fromLatin1(g_store_buy_prop_url)
            .arg(QString::number(propId), QString::number(bid), QString::number(normType),
                 query.random, query.time, query.signature);
    m_request = ServiceRequest::start(url, this);
    m_isBusy = true;
    m_price = price;
}

void BuyRequest::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (!reply)
        return;
    m_isBusy = false;
    const QPointer<BuyRequest> self(this); // a slot of refreshProfile() may delete it
    const std::optional<QJsonObject> answer = ServiceAnswer::objectOf(*reply);
    const bool isBought = answer && parseData(*answer);
    if (self)
        Q_EMIT requestFinished(isBought);
}

bool BuyRequest::parseData(const QJsonObject &json)
{
    return StoreAnswer::takeGranted(json, [&] { takeGoods(json); });
}

void BuyRequest::takeGoods(const QJsonObject &json) const
{
    const auto id = static_cast<quint32>(ServiceAnswer::number(json, "propId"));
    const auto count = static_cast<quint32>(ServiceAnswer::number(json, "count"));
    // The service has the money, whatever is wrong with the rest of its answer.
    RivetUserProfile::GetInstance()->ModifyMoney(static_cast<int>(0U - m_price));
    const StoreProp prop = RivetStoreListInfo::GetInstance()->getStoreProp(id);
    if (prop.toolType == StoreProp::Membership) {
        becomeVip(prop, json);
        return;
    }
    const bool isSwitched = prop.toolType == StoreProp::Switched;
    const quint32 endTime = isSwitched ? ServiceAnswer::time(json, "expiryData") : 0;
    MyPropListInfo::GetInstance()->UpdateMyPorpInfo(id, count, endTime);
}
