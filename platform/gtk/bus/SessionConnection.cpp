#include "platform/gtk/bus/SessionConnection.h"

#include "platform/gtk/bus/SessionBus.h"

#include <utility>
#include <vector>

namespace harbrook::gtk {

namespace {

using Ready = std::function<void(GObjectPtr<GDBusConnection>)>;

void onConnected(GObject* /*source*/, GAsyncResult* result, gpointer data) noexcept {
    const std::unique_ptr<Ready> ready(static_cast<Ready*>(data));
    auto connection = GObjectPtr<GDBusConnection>::adopt(g_bus_get_finish(result, nullptr));
    if (connection) (*ready)(std::move(connection));
}

/// The one connection to a bus that was too slow for the libraries, and who waits for it.
class LateConnection {
public:
    void ask(Ready ready) {
        if (connection_) {
            ready(connection_);
            return;
        }
        waiting_.push_back(std::move(ready));
        if (std::exchange(isAsked_, true)) return;
        const auto connected = [](GObject*, GAsyncResult* result, gpointer self) noexcept {
            static_cast<LateConnection*>(self)->connected(GObjectPtr<GDBusConnection>::adopt(
                g_dbus_connection_new_for_address_finish(result, nullptr)));
        };
        constexpr auto flags = static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        g_dbus_connection_new_for_address(
            slowSessionBusAddress().c_str(), flags, nullptr, nullptr, connected, this);
    }

private:
    void connected(GObjectPtr<GDBusConnection> connection) {
        const auto waiting = std::exchange(waiting_, {});
        connection_ = std::move(connection);
        if (!connection_) return;
        for (const auto& ready : waiting)
            ready(connection_);
    }

    GObjectPtr<GDBusConnection> connection_;
    std::vector<Ready> waiting_;
    bool isAsked_ = false;
};

} // namespace

void withSessionBus(Ready ready) {
    if (!slowSessionBusAddress().empty()) {
        static LateConnection late;
        late.ask(std::move(ready));
        return;
    }
    auto* application = g_application_get_default();
    auto* connection = application ? g_application_get_dbus_connection(application) : nullptr;
    if (connection) {
        ready(GObjectPtr<GDBusConnection>::share(connection));
        return;
    }
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, onConnected, std::make_unique<Ready>(std::move(ready)).release());
}

} // namespace harbrook::gtk
