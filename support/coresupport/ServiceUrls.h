#pragma once

#include <QString>

#include "support/coresupport/CoreSupportExport.h"

/// The addresses of the launcher's web services, as format strings for QString::arg: the comment
/// of each names what stands at %1, %2 and so on. They are built when the library is loaded, and
/// again by ServiceUrls::setBaseAddress(); a pointer read earlier stays valid.
/// @{
extern CORESUPPORT_EXPORT const char *g_rivet_login_url; ///< user name, hex MD5, channel
extern CORESUPPORT_EXPORT const char
    *g_rivet_register_url; ///< user name, password, display name, 1
extern CORESUPPORT_EXPORT const char *g_rivet_verify_code_url; ///< user name, verification code
extern CORESUPPORT_EXPORT const char *g_rivet_setting_info_url;
extern CORESUPPORT_EXPORT const char *g_view_user_info_url; ///< bid, random number, time, signature
extern CORESUPPORT_EXPORT const char *g_client_list_url;
extern CORESUPPORT_EXPORT const char *g_java_list_url;
extern CORESUPPORT_EXPORT const char *g_resInfo_url;                 ///< resource id
extern CORESUPPORT_EXPORT const char *g_my_server_instance_list_url; ///< bid
extern CORESUPPORT_EXPORT const char *g_lan_server_list_url;
extern CORESUPPORT_EXPORT const char *g_store_get_store_proplist_url; ///< page, page size
/// Prop id, bid, norm type, random number, time, signature.
extern CORESUPPORT_EXPORT const char *g_store_buy_prop_url;
extern CORESUPPORT_EXPORT const char *g_store_use_prop_url;        ///< bid, prop id, 1 or 0, extra
extern CORESUPPORT_EXPORT const char *g_store_get_my_proplist_url; ///< bid
extern CORESUPPORT_EXPORT const char
    *g_get_vip_welfare_url; ///< bid, random number, time, signature
/// @}

namespace ServiceUrls {

/// Points all URL globals to the service at @p address, an http or https URL with a host and at
/// most a path. The environment variable RIVET_SERVICE_URL goes before it: where that holds an
/// address, the globals stay with it. False, with a log line and no change, if @p address is none.
/// Main thread, before the first request.
CORESUPPORT_EXPORT bool setBaseAddress(const QString &address);

/// The address in force, without a trailing slash. "https://service.rivet.example" unless the
/// environment or the host says otherwise.
CORESUPPORT_EXPORT QString baseAddress();

} // namespace ServiceUrls
