#include "platform/gtk/web/WebRefusals.h"

namespace harbrook::gtk {

void refuseRequests(SignalConnections& connections, WebKitWebView* view) {
    const auto permission = [](WebKitWebView*, WebKitPermissionRequest* request, void*) noexcept -> gboolean {
        webkit_permission_request_deny(request);
        return TRUE;
    };
    const auto permissionState = [](WebKitWebView*, WebKitPermissionStateQuery* query,
                                    void*) noexcept -> gboolean {
        webkit_permission_state_query_finish(query, WEBKIT_PERMISSION_STATE_DENIED);
        return TRUE;
    };
    const auto notification = [](WebKitWebView*, WebKitNotification*, void*) noexcept -> gboolean {
        return TRUE;
    };
    // Without a credential the page of the refusal (401) is shown, as for any other answer of the server.
    const auto password = [](WebKitWebView*, WebKitAuthenticationRequest* request,
                             void*) noexcept -> gboolean {
        webkit_authentication_request_authenticate(request, nullptr);
        return TRUE;
    };
    const auto file = [](WebKitWebView*, WebKitFileChooserRequest* request, void*) noexcept -> gboolean {
        webkit_file_chooser_request_cancel(request);
        return TRUE;
    };
    const auto color = [](WebKitWebView*, WebKitColorChooserRequest* request, void*) noexcept -> gboolean {
        webkit_color_chooser_request_cancel(request);
        return TRUE;
    };
    const auto print = [](WebKitWebView*, WebKitPrintOperation*, void*) noexcept -> gboolean { return TRUE; };

    connections.add(view, "permission-request", permission, nullptr);
    connections.add(view, "query-permission-state", permissionState, nullptr);
    connections.add(view, "show-notification", notification, nullptr);
    connections.add(view, "authenticate", password, nullptr);
    connections.add(view, "run-file-chooser", file, nullptr);
    connections.add(view, "run-color-chooser", color, nullptr);
    connections.add(view, "print", print, nullptr);
}

} // namespace harbrook::gtk
