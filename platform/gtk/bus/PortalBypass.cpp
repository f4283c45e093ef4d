#include "platform/gtk/bus/PortalBypass.h"

#include "platform/gtk/bus/Portal.h"

#include <string_view>

namespace harbrook::gtk {

namespace {

/// A name that nobody owns, so that the bus refuses at once.
constexpr auto nobody = "com.brackenforge.harbrook.Nobody";

std::string_view textOrEmpty(const char* text) {
    return text ? text : "";
}

/// What to ask the bus instead, where it is asked to start the portal or to tell who the portal is; null for
/// any other message.
GVariant* otherBody(GDBusMessage* message) {
    if (textOrEmpty(g_dbus_message_get_arg0(message)) != portal::name) return nullptr;
    const auto member = textOrEmpty(g_dbus_message_get_member(message));
    if (member == "StartServiceByName") return g_variant_new("(su)", nobody, 0U);
    if (member == "GetNameOwner") return g_variant_new("(s)", nobody);
    return nullptr;
}

/// Runs on the bus connection's own thread. Takes `message` and gives one back.
GDBusMessage* redirect(GDBusConnection*, GDBusMessage* message, gboolean isIncoming, void*) noexcept {
    if (isIncoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
        return message;
    GVariant* body = otherBody(message);
    if (!body) return message;
    GDBusMessage* copy = g_dbus_message_copy(message, nullptr);
    g_dbus_message_set_body(copy, body);
    g_object_unref(message);
    return copy;
}

} // namespace

PortalBypass::PortalBypass() {
    bus_ = GObjectPtr<GDBusConnection>::adopt(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (bus_) filter_ = g_dbus_connection_add_filter(bus_.get(), redirect, nullptr, nullptr);
}

PortalBypass::~PortalBypass() {
    if (filter_) g_dbus_connection_remove_filter(bus_.get(), filter_);
}

} // namespace harbrook::gtk
