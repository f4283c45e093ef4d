#include "platform/gtk/web/WebEngine.h"

#include "platform/gtk/web/PageZoom.h"
#include "platform/gtk/web/RenderingPolicy.h"
#include "platform/gtk/web/WebSession.h"

#include <array>
#include <memory>
#include <string_view>

namespace harbrook::gtk {

namespace {

/// Switches off a feature that has no setting of its own. An engine that does not know it needs no switch.
void disableFeature(WebKitSettings* settings, std::string_view identifier) {
    struct Unref {
        void operator()(WebKitFeatureList* list) const { webkit_feature_list_unref(list); }
    };
    const std::unique_ptr<WebKitFeatureList, Unref> features(webkit_settings_get_all_features());
    for (gsize i = 0; i < webkit_feature_list_get_length(features.get()); ++i) {
        WebKitFeature* feature = webkit_feature_list_get(features.get(), i);
        if (identifier == webkit_feature_get_identifier(feature)) {
            webkit_settings_set_feature_enabled(settings, feature, FALSE);
        }
    }
}

GObjectPtr<WebKitSettings> makeSettings() {
    auto settings = GObjectPtr<WebKitSettings>::adopt(webkit_settings_new());
    // Every request for a window has to reach the shell, which opens none: without this the engine swallows
    // those that come without a gesture of the user's.
    webkit_settings_set_javascript_can_open_windows_automatically(settings.get(), TRUE);
    // No page here has an opener to be cut off from. Heeding this header of a server's would only throw away
    // the web process that was made ready for its page, and keep a second one.
    disableFeature(settings.get(), "CrossOriginOpenerPolicy");
    // No look-ups for links that nobody has followed.
    disableFeature(settings.get(), "LinkDNSPrefetch");
    // Full screen is the window's to enter, not the page's.
    webkit_settings_set_enable_fullscreen(settings.get(), FALSE);
    if (!hasRenderNode()) {
        webkit_settings_set_hardware_acceleration_policy(
            settings.get(), WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    }
#ifndef NDEBUG
    webkit_settings_set_enable_developer_extras(settings.get(), TRUE);
#endif
    return settings;
}

/// What a script of the shell's says is for the pages of a local server. A document that comes to be shown in
/// another way, by whatever way of the engine's, gets none of it. Ports make no difference to the engine
/// here.
constexpr std::array<const char*, 3> localPages = {"http://localhost/*", "https://localhost/*", nullptr};

void addScript(WebKitUserContentManager* manager, const UserScript& script) {
    WebKitUserScript* native = webkit_user_script_new(
        script.source.c_str(),
        script.forMainFrameOnly ? WEBKIT_USER_CONTENT_INJECT_TOP_FRAME
                                : WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
        script.injectionTime == UserScriptInjectionTime::atDocumentStart
            ? WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START
            : WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_END,
        localPages.data(), nullptr);
    webkit_user_content_manager_add_script(manager, native);
    webkit_user_script_unref(native);
}

/// What is dropped on a page is no link of the page's: the engine would open a dropped file or address in the
/// page's place. It has no setting for that (WebKitGTK 2.50), so its view is no target for drags.
void refuseDrops(GtkWidget* view) {
    const auto controllers = GObjectPtr<GListModel>::adopt(gtk_widget_observe_controllers(view));
    for (guint i = g_list_model_get_n_items(controllers.get()); i-- > 0;) {
        const auto controller =
            GObjectPtr<GObject>::adopt(G_OBJECT(g_list_model_get_item(controllers.get(), i)));
        if (!GTK_IS_DROP_TARGET_ASYNC(controller.get())) continue;
        gtk_widget_remove_controller(view, GTK_EVENT_CONTROLLER(controller.get()));
    }
}

} // namespace

GObjectPtr<WebKitWebView> makeEngineView(const std::vector<UserScript>& scripts) {
    // One store for all views of the process: two could not share its files.
    static const auto session = makeDefaultSession();
    const auto manager = GObjectPtr<WebKitUserContentManager>::adopt(webkit_user_content_manager_new());
    for (const auto& script : scripts)
        addScript(manager.get(), script);
    const auto settings = makeSettings();
    auto view = GObjectPtr<WebKitWebView>::sink(WEBKIT_WEB_VIEW(g_object_new(
        WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), "user-content-manager", manager.get(),
        "settings", settings.get(), nullptr)));
    refuseDrops(GTK_WIDGET(view.get()));
    letUserZoom(view.get());
    return view;
}

} // namespace harbrook::gtk
