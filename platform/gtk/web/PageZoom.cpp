#include "platform/gtk/web/PageZoom.h"

#include "platform/gtk/foundation/GObjectPtr.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace harbrook::gtk {

namespace {

using KeyFile = std::unique_ptr<GKeyFile, FreeWith<g_key_file_unref>>;

constexpr std::array steps = {0.5, 0.67, 0.75, 0.8, 0.9, 1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0};
constexpr double tolerance = 0.005;

constexpr auto group = "Page";
constexpr auto key = "zoom";

std::string directory() {
    return std::string(g_get_user_state_dir()) + "/harbrook";
}

std::string path() {
    return directory() + "/page.ini";
}

double savedZoom() {
    const KeyFile file(g_key_file_new());
    g_key_file_load_from_file(file.get(), path().c_str(), G_KEY_FILE_NONE, nullptr);
    const double level = g_key_file_get_double(file.get(), group, key, nullptr);
    // Nothing saved reads as zero.
    return level >= steps.front() && level <= steps.back() ? level : 1.0;
}

void saveZoom(double level) {
    const KeyFile file(g_key_file_new());
    g_key_file_set_double(file.get(), group, key, level);
    constexpr int onlyForTheUser = 0700;
    g_mkdir_with_parents(directory().c_str(), onlyForTheUser);
    g_key_file_save_to_file(file.get(), path().c_str(), nullptr);
}

/// `direction` 0 goes back to the page's own size.
void zoom(WebKitWebView* view, int direction) {
    const double level = direction == 0 ? 1.0 : nextZoom(webkit_web_view_get_zoom_level(view), direction);
    webkit_web_view_set_zoom_level(view, level);
    saveZoom(level);
}

template <int direction>
gboolean zoomBy(GtkWidget* view, GVariant* /*arguments*/, void* /*data*/) noexcept {
    zoom(WEBKIT_WEB_VIEW(view), direction);
    return TRUE;
}

} // namespace

double nextZoom(double level, int direction) {
    if (direction > 0) {
        const auto* next = std::ranges::find_if(steps, [&](double step) { return step > level + tolerance; });
        return next == steps.end() ? steps.back() : *next;
    }
    const auto next =
        std::find_if(steps.rbegin(), steps.rend(), [&](double step) { return step < level - tolerance; });
    return next == steps.rend() ? steps.front() : *next;
}

void letUserZoom(WebKitWebView* view) {
    webkit_web_view_set_zoom_level(view, savedZoom());
    struct Key {
        const char* trigger;
        GtkShortcutFunc act;
    };
    constexpr std::array keys = {
        Key{"<Control>plus|<Control><Shift>plus|<Control>equal|<Control>KP_Add", zoomBy<1>},
        Key{"<Control>minus|<Control>KP_Subtract", zoomBy<-1>}, Key{"<Control>0|<Control>KP_0", zoomBy<0>}};
    GtkEventController* controller = gtk_shortcut_controller_new();
    gtk_event_controller_set_propagation_phase(controller, GTK_PHASE_CAPTURE);
    gtk_shortcut_controller_set_scope(GTK_SHORTCUT_CONTROLLER(controller), GTK_SHORTCUT_SCOPE_GLOBAL);
    for (const auto& one : keys) {
        gtk_shortcut_controller_add_shortcut(
            GTK_SHORTCUT_CONTROLLER(controller), gtk_shortcut_new(
                                                     gtk_shortcut_trigger_parse_string(one.trigger),
                                                     gtk_callback_action_new(one.act, nullptr, nullptr)));
    }
    gtk_widget_add_controller(GTK_WIDGET(view), controller);
}

} // namespace harbrook::gtk
