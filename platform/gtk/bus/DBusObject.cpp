#include "platform/gtk/bus/DBusObject.h"

namespace harbrook::gtk {

namespace {

using NodeInfoPtr = std::unique_ptr<GDBusNodeInfo, FreeWith<g_dbus_node_info_unref>>;

void onMethodCall(
    GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/, const char* /*interface*/,
    const char* method, GVariant* arguments, GDBusMethodInvocation* invocation, gpointer handler) noexcept {
    static_cast<DBusHandler*>(handler)->handleMethod(
        method, arguments, GObjectPtr<GDBusMethodInvocation>::adopt(invocation));
}

GVariant* onGetProperty(
    GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/, const char* /*interface*/,
    const char* name, GError** /*error*/, gpointer handler) noexcept {
    return static_cast<DBusHandler*>(handler)->property(name);
}

constexpr GDBusInterfaceVTable vtable = {onMethodCall, onGetProperty, nullptr, {}};

} // namespace

DBusObject::DBusObject(
    GObjectPtr<GDBusConnection> connection, std::string path, const char* introspection, DBusHandler& handler)
    : connection_(std::move(connection)), path_(std::move(path)) {
    const NodeInfoPtr node(g_dbus_node_info_new_for_xml(introspection, nullptr));
    g_assert(node && node->interfaces[0]);
    interface_ = node->interfaces[0]->name;
    registration_ = g_dbus_connection_register_object(
        connection_.get(), path_.c_str(), node->interfaces[0], &vtable, &handler, nullptr, nullptr);
}

DBusObject::~DBusObject() {
    if (registration_ != 0) g_dbus_connection_unregister_object(connection_.get(), registration_);
}

void DBusObject::emitSignal(const char* name, GVariant* arguments) {
    g_dbus_connection_emit_signal(
        connection_.get(), nullptr, path_.c_str(), interface_.c_str(), name, arguments, nullptr);
}

} // namespace harbrook::gtk
