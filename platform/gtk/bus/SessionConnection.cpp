#include "platform/gtk/bus/SessionConnection.h"

namespace harbrook::gtk {

namespace {

using Ready = std::function<void(GObjectPtr<GDBusConnection>)>;

void onConnected(GObject* /*source*/, GAsyncResult* result, gpointer data) noexcept {
    const std::unique_ptr<Ready> ready(static_cast<Ready*>(data));
    auto connection = GObjectPtr<GDBusConnection>::adopt(g_bus_get_finish(result, nullptr));
    if (connection) (*ready)(std::move(connection));
}

} // namespace

void withSessionBus(Ready ready) {
    auto* application = g_application_get_default();
    auto* connection = application ? g_application_get_dbus_connection(application) : nullptr;
    if (connection) {
        ready(GObjectPtr<GDBusConnection>::share(connection));
        return;
    }
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, onConnected, std::make_unique<Ready>(std::move(ready)).release());
}

} // namespace harbrook::gtk
