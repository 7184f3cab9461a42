#include "core/store/UsePropRequest.h"

#include <QNetworkReply>

#include "core/accounts/RivetUserProfile.h"
#include "core/foundation/ServiceAnswer.h"
#include "core/foundation/ServiceRequest.h"
#include "core/store/MyPropListInfo.h"
#include "core/store/StoreAnswer.h"
#include "support/coresupport/HttpRequestTask.h"
#include "support/coresupport/ServiceUrls.h"

UsePropRequest::UsePropRequest(QObject *parent) : QObject(parent) {}

UsePropRequest::~UsePropRequest() = default;

void UsePropRequest::UseProp(unsigned int propId, bool use, unsigned int extra)
{
    if (m_isBusy)
        return;
    const QString url = QString::fromLatin1(g_store_use_prop_url)
                            .arg(RivetUserProfile::GetInstance()->getBid())
                            .arg(propId)
                            .arg(use ? 1 : 0)
                            .arg(extra);
    m_request = ServiceRequest::start(url, this);
    m_isBusy = true;
    m_propId = propId;
    m_use = use;
}

void UsePropRequest::httpRequestFinished(unsigned short, QNetworkReply *reply)
{
    if (!reply)
        return;
    m_isBusy = false;
    const std::optional<QJsonObject> answer = ServiceAnswer::objectOf(*reply);
    Q_EMIT requestFinished(answer && parseData(*answer), QString());
}

bool UsePropRequest::parseData(const QJsonObject &json)
{
    return StoreAnswer::takeGranted(
        json, [this] { MyPropListInfo::GetInstance()->ChangePropUserStatus(m_propId, m_use); });
}
