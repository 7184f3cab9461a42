#pragma once

#include <memory>

#include <QFile>

#include "base/RivetCoreAtExitManagerUtil.h"
#include "fuzz/Fuzz.h"
#include "support/coresupport/ServiceUrls.h"

namespace fuzz {

/// The core with a service that answers all requests with one body, out of a file, for as long as
/// it lives: no socket, no thread.
class Service
{
public:
    explicit Service(const QByteArray &answer)
    {
        static const QByteArray url = "file://" + path("answer").toUtf8() + "?%1%2%3%4%5%6";
        for (const char **place :
             {&g_rivet_login_url, &g_rivet_register_url, &g_rivet_verify_code_url,
              &g_rivet_setting_info_url, &g_view_user_info_url, &g_client_list_url,
              &g_java_list_url, &g_resInfo_url, &g_my_server_instance_list_url,
              &g_lan_server_list_url, &g_store_get_store_proplist_url, &g_store_buy_prop_url,
              &g_store_use_prop_url, &g_store_get_my_proplist_url, &g_get_vip_welfare_url})
            *place = url;
        putFile("answer", answer);
        m_core = std::make_unique<RivetCoreAtExitManagerUtil>();
    }
    ~Service()
    {
        m_core.reset();
        spin();
    }

    /// Starts the core afresh, from what it has left on disk. No request is answered any more.
    void restartWithout()
    {
        m_core.reset();
        QFile::remove(path("answer"));
        m_core = std::make_unique<RivetCoreAtExitManagerUtil>();
    }

private:
    std::unique_ptr<RivetCoreAtExitManagerUtil> m_core;
};

} // namespace fuzz
