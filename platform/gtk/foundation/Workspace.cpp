#include "platform/gtk/foundation/Workspace.h"

#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/foundation/ProcessInfo.h"

#include <gtk/gtk.h>

namespace harbrook::gtk {

namespace {

/// Where there is a display, its context lets the opened program come to the front.
GObjectPtr<GAppLaunchContext> makeLaunchContext() {
    if (GdkDisplay* display = gdk_display_get_default()) {
        return GObjectPtr<GAppLaunchContext>::adopt(
            G_APP_LAUNCH_CONTEXT(gdk_display_get_app_launch_context(display)));
    }
    return GObjectPtr<GAppLaunchContext>::adopt(g_app_launch_context_new());
}

void didLaunch(GObject*, GAsyncResult* result, gpointer) {
    GError* error = nullptr;
    g_app_info_launch_default_for_uri_finish(result, &error);
    const GErrorPtr ignored(error);
}

} // namespace

bool Workspace::openURL(const URL& url) {
    if (!url.scheme()) return false;
    const auto context = makeLaunchContext();
    for (const auto& [name, value] : currentEnvironment()) {
        if (!environment_.contains(name)) g_app_launch_context_unsetenv(context.get(), name.c_str());
    }
    for (const auto& [name, value] : environment_) {
        g_app_launch_context_setenv(context.get(), name.c_str(), value.c_str());
    }
    g_app_info_launch_default_for_uri_async(
        url.absoluteString().c_str(), context.get(), nullptr, didLaunch, nullptr);
    return true;
}

} // namespace harbrook::gtk
