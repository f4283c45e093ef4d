#include "platform/gtk/web/WebSession.h"

namespace harbrook::gtk {

GObjectPtr<WebKitNetworkSession> makeDefaultSession() {
    const GCharPtr data(g_build_filename(g_get_user_data_dir(), "harbrook", nullptr));
    const GCharPtr cache(g_build_filename(g_get_user_cache_dir(), "harbrook", nullptr));
    const GCharPtr cookies(g_build_filename(data.get(), "cookies.sqlite", nullptr));

    auto session =
        GObjectPtr<WebKitNetworkSession>::adopt(webkit_network_session_new(data.get(), cache.get()));
    webkit_cookie_manager_set_persistent_storage(
        webkit_network_session_get_cookie_manager(session.get()), cookies.get(),
        WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    webkit_network_session_set_proxy_settings(session.get(), WEBKIT_NETWORK_PROXY_MODE_NO_PROXY, nullptr);
    webkit_network_session_set_tls_errors_policy(session.get(), WEBKIT_TLS_ERRORS_POLICY_FAIL);
    webkit_network_session_set_persistent_credential_storage_enabled(session.get(), FALSE);
    return session;
}

} // namespace harbrook::gtk
