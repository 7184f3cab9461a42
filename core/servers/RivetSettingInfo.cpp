#include "core/servers/RivetSettingInfo.h"

#include <algorithm>
#include <utility>

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkReply>
#include <QStringBuilder>

#include "base/LazySingleton.h"
#include "core/foundation/CachedAnswer.h"
#include "core/foundation/Environment.h"
#include "core/foundation/FSH.h"
#include "core/foundation/ServiceRequest.h"
#include "support/coresupport/ServiceUrls.h"

namespace {

CachedAnswer::Kind kind()
{
    return {QStringLiteral("parseInfo faied. json:"),
            QStringLiteral("netupdateInfo failed with errno "),
            FSH::localAppDataPath() % QLatin1String("/settinginfo.cache"),
            CachedAnswer::Form::FilteredText};
}

std::shared_ptr<RivetBtnInfo> buttonIn(const QJsonObject &object)
{
    const auto text = [&object](const char *key) { return object[QLatin1String(key)].toString(); };
    auto button = std::make_shared<RivetBtnInfo>();
    button->name = text("name");
    button->link = text("link");
    button->text = text("text");
    button->id = text("id");
    button->type = text("type");
    button->btnType = text("btnType");
    button->status = text("status");
    return button->name.isEmpty() ? nullptr : button;
}

std::shared_ptr<CustomerServiceInfo> contactIn(const QJsonObject &object)
{
    auto contact = std::make_shared<CustomerServiceInfo>();
    contact->name = object[QLatin1String("name")].toString();
    contact->url = object[QLatin1String("url")].toString();
    contact->sort = object[QLatin1String("sort")].toInt(0);
    return contact->name.isEmpty() || contact->url.isEmpty() ? nullptr : contact;
}

/// What @p read makes of the elements of @p array, without those of which it makes nothing.
template <typename Item>
QList<std::shared_ptr<Item>> itemsOf(const QJsonValue &array,
                                     std::shared_ptr<Item> (*read)(const QJsonObject &))
{
    QList<std::shared_ptr<Item>> items;
    const QJsonArray elements = array.toArray();
    for (const QJsonValue &element : elements) {
        if (std::shared_ptr<Item> item = read(element.toObject()))
            items << item;
    }
    return items;
}

} // namespace

RivetSettingInfo::RivetSettingInfo()
    : m_manager(Environment::GetInstance()->getShareNetworkAccessMgr())
{
}

RivetSettingInfo::~RivetSettingInfo() = default;

RivetSettingInfo *RivetSettingInfo::GetInstance()
{
    return LazySingleton<RivetSettingInfo>::get();
}

void RivetSettingInfo::updateInfo()
{
    if (m_isUpdated || m_reply)
        return;
    m_reply = ServiceRequest::get(*m_manager, QString::fromLatin1(g_rivet_setting_info_url));
    connect(m_reply, &QNetworkReply::finished, this, &RivetSettingInfo::onNetGetInfoFinished);
}

void RivetSettingInfo::onNetGetInfoFinished()
{
    if (!m_reply)
        return;
    const auto parse = [this](const QJsonObject &object) {
        return parseInfo(object) ? CachedAnswer::Verdict::Good : CachedAnswer::Verdict::Refused;
    };
    if (CachedAnswer::take(*m_reply, kind(), parse))
        m_isUpdated = true;
    std::exchange(m_reply, nullptr)->deleteLater();
    Q_EMIT updateInfoFinished(m_isUpdated);
}

bool RivetSettingInfo::parseInfo(const QJsonObject &object)
{
    m_buttons = itemsOf(object[QLatin1String("btn")], &buttonIn);
    m_contacts = itemsOf(object[QLatin1String("kefu")], &contactIn);
    std::stable_sort(m_contacts.begin(), m_contacts.end(),
                     [](const auto &a, const auto &b) { return a->sort < b->sort; });
    return true;
}

std::shared_ptr<RivetBtnInfo> RivetSettingInfo::getrivetButtonInfoByName(const QString &name) const
{
    const auto found = std::find_if(m_buttons.begin(), m_buttons.end(),
                                    [&name](const auto &button) { return button->name == name; });
    return found == m_buttons.end() ? nullptr : *found;
}
