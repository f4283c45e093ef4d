// The least that shows a page with GTK 4 and WebKitGTK: what the shell's start and memory are held against.
// It draws as the shell draws: without a render node, in software.

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <algorithm>
#include <filesystem>

namespace {

bool hasRenderNode() {
    std::error_code error;
    return std::ranges::any_of(std::filesystem::directory_iterator("/dev/dri", error), [](const auto& entry) {
        return entry.path().filename().string().starts_with("renderD");
    });
}

void activate(GtkApplication* application, gpointer address) {
    auto* window = gtk_application_window_new(application);
    gtk_window_set_default_size(GTK_WINDOW(window), 1320, 860);
    auto* view = webkit_web_view_new();
    if (!hasRenderNode()) {
        webkit_settings_set_hardware_acceleration_policy(
            webkit_web_view_get_settings(WEBKIT_WEB_VIEW(view)), WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    }
    gtk_window_set_child(GTK_WINDOW(window), view);
    webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), static_cast<const char*>(address));
    gtk_window_present(GTK_WINDOW(window));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    if (!hasRenderNode()) g_setenv("GSK_RENDERER", "cairo", FALSE);
    auto* application = gtk_application_new(nullptr, G_APPLICATION_NON_UNIQUE);
    g_signal_connect(application, "activate", G_CALLBACK(activate), argv[1]);
    const int status = g_application_run(G_APPLICATION(application), 1, argv);
    g_object_unref(application);
    return status;
}
