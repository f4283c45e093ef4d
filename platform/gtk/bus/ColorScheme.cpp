#include "platform/gtk/bus/ColorScheme.h"

#include "platform/gtk/bus/Portal.h"

#include <string_view>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto settingsInterface = "org.freedesktop.portal.Settings";
constexpr auto appearanceNamespace = "org.freedesktop.appearance";
constexpr auto colorSchemeKey = "color-scheme";
constexpr auto desktopSchema = "org.gnome.desktop.interface";

} // namespace

std::optional<ColorScheme> colorSchemeFromPortal(GVariant* value) {
    // The answer to `Read` is a variant inside a variant; the signal carries it bare.
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
        const GVariantPtr inner(g_variant_get_variant(value));
        return colorSchemeFromPortal(inner.get());
    }
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32)) return std::nullopt;
    const auto number = g_variant_get_uint32(value);
    return number == 1 ? ColorScheme::dark : number == 2 ? ColorScheme::light : ColorScheme::noPreference;
}

ColorScheme colorSchemeFromSettings(std::string_view value) {
    if (value == "prefer-dark") return ColorScheme::dark;
    return value == "prefer-light" ? ColorScheme::light : ColorScheme::noPreference;
}

DesktopColorScheme::DesktopColorScheme(std::function<void()> changed)
    : changed_(std::move(changed)), pending_(GObjectPtr<GCancellable>::adopt(g_cancellable_new())) {
    readSettingsSchema();
    lookForPortal();
}

DesktopColorScheme::~DesktopColorScheme() {
    g_cancellable_cancel(pending_.get());
    if (watch_) g_bus_unwatch_name(watch_);
    if (subscription_) g_dbus_connection_signal_unsubscribe(bus_.get(), subscription_);
}

void DesktopColorScheme::readSettingsSchema() {
    auto* source = g_settings_schema_source_get_default();
    if (!source) return;
    auto* schema = g_settings_schema_source_lookup(source, desktopSchema, TRUE);
    if (!schema) return;
    const bool hasKey = g_settings_schema_has_key(schema, colorSchemeKey);
    g_settings_schema_unref(schema);
    if (!hasKey) return;

    settings_ = GObjectPtr<GSettings>::adopt(g_settings_new(desktopSchema));
    const auto read = [](GSettings* settings, const char* /*key*/, void* self) noexcept {
        auto& scheme = *static_cast<DesktopColorScheme*>(self);
        if (scheme.portalAnswered_) return;
        const GCharPtr text(g_settings_get_string(settings, colorSchemeKey));
        scheme.become(colorSchemeFromSettings(text.get()));
    };
    connections_.add(settings_.get(), "changed::color-scheme", read, this);
    read(settings_.get(), colorSchemeKey, this);
}

void DesktopColorScheme::lookForPortal() {
    // A cancelled call is called back too, but with an error: by then there may be no receiver.
    const auto gotBus = [](GObject* /*source*/, GAsyncResult* result, void* self) noexcept {
        GError* failure = nullptr;
        auto bus = GObjectPtr<GDBusConnection>::adopt(g_bus_get_finish(result, &failure));
        const GErrorPtr error(failure);
        if (bus) static_cast<DesktopColorScheme*>(self)->listenToPortal(std::move(bus));
    };
    g_bus_get(G_BUS_TYPE_SESSION, pending_.get(), gotBus, this);
}

void DesktopColorScheme::listenToPortal(GObjectPtr<GDBusConnection> bus) {
    bus_ = std::move(bus);
    const auto settingChanged = [](GDBusConnection*, const char*, const char*, const char*, const char*,
                                   GVariant* parameters, void* self) noexcept {
        const char* group = nullptr;
        const char* key = nullptr;
        GVariant* value = nullptr;
        if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)"))) return;
        g_variant_get(parameters, "(&s&sv)", &group, &key, &value);
        const GVariantPtr owned(value);
        if (std::string_view(key) == colorSchemeKey)
            static_cast<DesktopColorScheme*>(self)->portalSays(value);
    };
    subscription_ = g_dbus_connection_signal_subscribe(
        bus_.get(), portal::name, settingsInterface, "SettingChanged", portal::path, appearanceNamespace,
        G_DBUS_SIGNAL_FLAGS_NONE, settingChanged, this, nullptr);
    const auto appeared = [](GDBusConnection*, const char*, const char*, void* self) noexcept {
        static_cast<DesktopColorScheme*>(self)->askPortal();
    };
    watch_ = g_bus_watch_name_on_connection(
        bus_.get(), portal::name, G_BUS_NAME_WATCHER_FLAGS_AUTO_START, appeared, nullptr, this, nullptr);
}

void DesktopColorScheme::askPortal() {
    const auto answered = [](GObject* source, GAsyncResult* result, void* self) noexcept {
        GError* failure = nullptr;
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &failure));
        const GErrorPtr error(failure);
        if (!answer) return;
        GVariant* value = nullptr;
        g_variant_get(answer.get(), "(v)", &value);
        const GVariantPtr owned(value);
        static_cast<DesktopColorScheme*>(self)->portalSays(value);
    };
    g_dbus_connection_call(
        bus_.get(), portal::name, portal::path, settingsInterface, "Read",
        g_variant_new("(ss)", appearanceNamespace, colorSchemeKey), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, pending_.get(), answered, this);
}

void DesktopColorScheme::portalSays(GVariant* value) {
    const auto scheme = colorSchemeFromPortal(value);
    if (!scheme) return;
    portalAnswered_ = true;
    become(*scheme);
}

void DesktopColorScheme::become(ColorScheme scheme) {
    if (scheme == current_) return;
    current_ = scheme;
    changed_();
}

} // namespace harbrook::gtk
