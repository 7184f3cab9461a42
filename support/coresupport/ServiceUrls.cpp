#include "support/coresupport/ServiceUrls.h"

#include <forward_list>
#include <vector>

#include <QByteArray>
#include <QUrl>

#include "support/jsonfskit/Log.h"

const char *g_rivet_login_url;
const char *g_rivet_register_url;
const char *g_rivet_verify_code_url;
const char *g_rivet_setting_info_url;
const char *g_view_user_info_url;
const char *g_client_list_url;
const char *g_java_list_url;
const char *g_resInfo_url;
const char *g_my_server_instance_list_url;
const char *g_lan_server_list_url;
const char *g_store_get_store_proplist_url;
const char *g_store_buy_prop_url;
const char *g_store_use_prop_url;
const char *g_store_get_my_proplist_url;
const char *g_get_vip_welfare_url;

namespace {

struct Endpoint
{
    const char *&url;
    const char *pathAndQuery;
};

const Endpoint endpoints[] = {
    {g_rivet_login_url, "/account/login?user=%1&password=%2&channel=%3"},
    {g_rivet_register_url, "/account/register?user=%1&password=%2&name=%3&type=%4"},
    {g_rivet_verify_code_url, "/account/verify?user=%1&code=%2"},
    {g_rivet_setting_info_url, "/launcher/settings"},
    {g_view_user_info_url, "/account/info?bid=%1&rand=%2&time=%3&sign=%4"},
    {g_client_list_url, "/resources/clients"},
    {g_java_list_url, "/resources/java"},
    {g_resInfo_url, "/resources/info?id=%1"},
    {g_my_server_instance_list_url, "/servers/mine?bid=%1"},
    {g_lan_server_list_url, "/servers/lan"},
    {g_store_get_store_proplist_url, "/store/props?page=%1&size=%2"},
    {g_store_buy_prop_url, "/store/buy?prop=%1&bid=%2&norm=%3&rand=%4&time=%5&sign=%6"},
    {g_store_use_prop_url, "/store/use?bid=%1&prop=%2&use=%3&extra=%4"},
    {g_store_get_my_proplist_url, "/store/mine?bid=%1"},
    {g_get_vip_welfare_url, "/vip/welfare?bid=%1&rand=%2&time=%3&sign=%4"},
};

/// The address without a trailing slash; empty if it is none. A "%" could not be told from the
/// placeholders.
QByteArray checkedAddress(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    QByteArray base = url.toEncoded();
    const bool isHttp =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !isHttp || url.host().isEmpty() || !url.userInfo().isEmpty() ||
        url.hasQuery() || url.hasFragment() || base.contains('%')) {
        Log::warning(QLatin1String("not the address of a service, ignored: ") % address);
        return {};
    }
    while (base.endsWith('/'))
        base.chop(1);
    return base;
}

/// The base address and the strings that the globals point to.
class UrlTable
{
public:
    UrlTable()
    {
        const QString fromEnvironment = qEnvironmentVariable("RIVET_SERVICE_URL");
        if (!fromEnvironment.isEmpty())
            build(checkedAddress(fromEnvironment));
        m_isFixed = !m_base.isEmpty();
        if (!m_isFixed)
            build(QByteArrayLiteral("https://service.rivet.example"));
    }

    bool set(const QString &address)
    {
        const QByteArray base = checkedAddress(address);
        if (!m_isFixed)
            build(base);
        return !base.isEmpty();
    }

    QByteArray base() const { return m_base; }

private:
    void build(const QByteArray &base)
    {
        if (base.isEmpty())
            return;
        m_base = base;
        // The strings of an earlier address are kept: somebody may hold a pointer to one.
        m_strings.emplace_front();
        for (const Endpoint &endpoint : endpoints) {
            m_strings.front().push_back(base + endpoint.pathAndQuery);
            endpoint.url = m_strings.front().back().constData();
        }
    }

    bool m_isFixed = false;
    QByteArray m_base;
    std::forward_list<std::vector<QByteArray>> m_strings;
};

UrlTable table;

} // namespace

bool ServiceUrls::setBaseAddress(const QString &address)
{
    return table.set(address);
}

QString ServiceUrls::baseAddress()
{
    return QString::fromLatin1(table.base());
}
