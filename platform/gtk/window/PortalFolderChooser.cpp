#include "platform/gtk/window/PortalFolderChooser.h"

#include "platform/gtk/bus/Portal.h"

#include <string_view>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto chooserInterface = "org.freedesktop.portal.FileChooser";
constexpr auto requestInterface = "org.freedesktop.portal.Request";
/// The first one that can choose folders.
constexpr guint32 neededVersion = 3;
constexpr int patienceInMilliseconds = 1000;

/// Where the portal reports on the request with that token: known beforehand, so that no report is missed.
std::string requestPath(GDBusConnection* bus, const std::string& token) {
    // The unique name without its colon and with underscores for its dots.
    std::string sender = std::string(g_dbus_connection_get_unique_name(bus)).substr(1);
    for (char& character : sender) {
        if (character == '.') character = '_';
    }
    return std::string(portal::path) + "/request/" + sender + "/" + token;
}

std::string newToken() {
    static unsigned count = 0;
    return "harbrook" + std::to_string(++count);
}

GVariant* openFileArguments(const PortalFolderChooser::Question& question, const std::string& token) {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    const auto add = [&](const char* key, GVariant* value) {
        g_variant_builder_add(&options, "{sv}", key, value);
    };
    add("handle_token", g_variant_new_string(token.c_str()));
    add("accept_label", g_variant_new_string(question.acceptLabel.c_str()));
    add("modal", g_variant_new_boolean(TRUE));
    add("directory", g_variant_new_boolean(TRUE));
    if (!question.directory.empty()) {
        add("current_folder", g_variant_new_bytestring(question.directory.c_str()));
    }
    return g_variant_new("(ssa{sv})", question.parent.c_str(), question.title.c_str(), &options);
}

} // namespace

guint32 portalVersion(GVariant* answer) {
    const GVariantPtr boxed(g_variant_get_child_value(answer, 0));
    const GVariantPtr value(g_variant_get_variant(boxed.get()));
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32) ? g_variant_get_uint32(value.get()) : 0;
}

std::optional<PortalResponse> portalResponse(GVariant* arguments) {
    constexpr guint32 success = 0;
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ua{sv})"))) return std::nullopt;
    guint32 response = 0;
    GVariant* found = nullptr;
    g_variant_get(arguments, "(u@a{sv})", &response, &found);
    const GVariantPtr results(found);
    const GVariantPtr addresses(g_variant_lookup_value(results.get(), "uris", G_VARIANT_TYPE_STRING_ARRAY));
    if (response != success || !addresses || g_variant_n_children(addresses.get()) == 0) {
        return PortalResponse();
    }
    const char* address = nullptr;
    g_variant_get_child(addresses.get(), 0, "&s", &address);
    // A file has one path, without a slash at its end.
    const auto file = GObjectPtr<GFile>::adopt(g_file_new_for_uri(address));
    const GCharPtr path(g_file_get_path(file.get()));
    return path ? PortalResponse{path.get()} : PortalResponse();
}

PortalFolderChooser::PortalFolderChooser(Question question, Answered answered, Unavailable unavailable)
    : question_(std::move(question)),
      answered_(std::move(answered)),
      unavailable_(std::move(unavailable)),
      pending_(GObjectPtr<GCancellable>::adopt(g_cancellable_new())) {
    // A cancelled call is called back too, but with an error: by then there may be no receiver.
    const auto finished = [](GObject*, GAsyncResult* result, void* self) noexcept {
        GError* failure = nullptr;
        auto bus = GObjectPtr<GDBusConnection>::adopt(g_bus_get_finish(result, &failure));
        const GErrorPtr error(failure);
        if (error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
        static_cast<PortalFolderChooser*>(self)->gotBus(std::move(bus));
    };
    g_bus_get(G_BUS_TYPE_SESSION, pending_.get(), finished, this);
}

PortalFolderChooser::~PortalFolderChooser() {
    g_cancellable_cancel(pending_.get());
    stopListening();
}

void PortalFolderChooser::gotBus(GObjectPtr<GDBusConnection> bus) {
    if (!bus) {
        unavailable_();
        return;
    }
    bus_ = std::move(bus);
    const auto finished = [](GObject* source, GAsyncResult* result, void* self) noexcept {
        GError* failure = nullptr;
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &failure));
        const GErrorPtr error(failure);
        if (error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
        static_cast<PortalFolderChooser*>(self)->gotVersion(answer.get());
    };
    g_dbus_connection_call(
        bus_.get(), portal::name, portal::path, "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", chooserInterface, "version"), G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE,
        patienceInMilliseconds, pending_.get(), finished, this);
}

void PortalFolderChooser::gotVersion(GVariant* answer) {
    if (!answer || portalVersion(answer) < neededVersion) {
        unavailable_();
        return;
    }
    open();
}

void PortalFolderChooser::open() {
    const std::string token = newToken();
    const auto response = [](GDBusConnection*, const char*, const char*, const char*, const char*,
                             GVariant* parameters, void* self) noexcept {
        static_cast<PortalFolderChooser*>(self)->responded(parameters);
    };
    subscription_ = g_dbus_connection_signal_subscribe(
        bus_.get(), portal::name, requestInterface, "Response", requestPath(bus_.get(), token).c_str(),
        nullptr, G_DBUS_SIGNAL_FLAGS_NONE, response, this, nullptr);
    const auto vanished = [](GDBusConnection*, const char*, void* self) noexcept {
        static_cast<PortalFolderChooser*>(self)->fail();
    };
    watch_ = g_bus_watch_name_on_connection(
        bus_.get(), portal::name, G_BUS_NAME_WATCHER_FLAGS_NONE, nullptr, vanished, this, nullptr);

    const auto finished = [](GObject* source, GAsyncResult* result, void* data) noexcept {
        GError* failure = nullptr;
        const GVariantPtr handle(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &failure));
        const GErrorPtr error(failure);
        if (!error || g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
        static_cast<PortalFolderChooser*>(data)->fail();
    };
    g_dbus_connection_call(
        bus_.get(), portal::name, portal::path, chooserInterface, "OpenFile",
        openFileArguments(question_, token), G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NONE, -1,
        pending_.get(), finished, this);
}

void PortalFolderChooser::responded(GVariant* parameters) {
    const auto response = portalResponse(parameters);
    if (!response) return;
    stopListening();
    // The user may be faster than the answer to the request.
    g_cancellable_cancel(pending_.get());
    // The receiver may let go of this object.
    const auto answered = answered_;
    answered(response->folder);
}

void PortalFolderChooser::fail() {
    stopListening();
    g_cancellable_cancel(pending_.get());
    // The receiver may let go of this object.
    const auto unavailable = unavailable_;
    unavailable();
}

void PortalFolderChooser::stopListening() {
    if (watch_) g_bus_unwatch_name(std::exchange(watch_, 0));
    if (subscription_) g_dbus_connection_signal_unsubscribe(bus_.get(), std::exchange(subscription_, 0));
}

} // namespace harbrook::gtk
