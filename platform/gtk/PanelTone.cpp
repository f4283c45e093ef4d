#include "platform/gtk/PanelTone.h"

#include <algorithm>
#include <array>

namespace harbrook::gtk {

namespace {

constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* settingsInterface = "org.freedesktop.portal.Settings";
constexpr const char* appearance = "org.freedesktop.appearance";
constexpr const char* colorScheme = "color-scheme";
constexpr std::uint32_t prefersDark = 1;

/// The number in however many variants it is wrapped.
std::uint32_t unwrappedNumber(GVariant* value) {
    GVariantPtr inner(g_variant_ref(value));
    while (g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_VARIANT)) {
        inner.reset(g_variant_get_variant(inner.get()));
    }
    return g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_UINT32) ? g_variant_get_uint32(inner.get()) : 0;
}

} // namespace

struct PanelToneWatch::Callbacks {
    static void appeared(
        GDBusConnection* /*connection*/, const char* /*name*/, const char* /*owner*/,
        gpointer self) noexcept {
        static_cast<PanelToneWatch*>(self)->ask();
    }

    static void answered(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        using Weak = std::weak_ptr<PanelToneWatch>;
        const std::unique_ptr<Weak> weak(static_cast<Weak*>(data));
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
        const auto self = weak->lock();
        if (!self || !answer) return;
        const GVariantPtr value(g_variant_get_child_value(answer.get(), 0));
        self->preferenceIs(unwrappedNumber(value.get()));
    }

    static void settingChanged(
        GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
        const char* /*interface*/, const char* /*signal*/, GVariant* arguments, gpointer self) noexcept {
        if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ssv)"))) return;
        const GVariantPtr key(g_variant_get_child_value(arguments, 1));
        const GVariantPtr value(g_variant_get_child_value(arguments, 2));
        if (std::string_view(g_variant_get_string(key.get(), nullptr)) != colorScheme) return;
        static_cast<PanelToneWatch*>(self)->preferenceIs(unwrappedNumber(value.get()));
    }
};

bool hasDarkPanel(std::string_view desktops) {
    constexpr std::array<std::string_view, 5> dark = {"GNOME", "Unity", "Pantheon", "XFCE", "Budgie"};
    while (!desktops.empty()) {
        const auto name = desktops.substr(0, desktops.find(':'));
        if (std::ranges::find(dark, name) != dark.end()) return true;
        desktops.remove_prefix(std::min(name.size() + 1, desktops.size()));
    }
    return false;
}

PanelToneWatch::PanelToneWatch(std::function<void()> changed) : changed_(std::move(changed)) {
    const auto* desktops = g_getenv("XDG_CURRENT_DESKTOP");
    isAlwaysDark_ = desktops && hasDarkPanel(desktops);
    if (isAlwaysDark_) tone_ = PanelTone::dark;
}

PanelToneWatch::~PanelToneWatch() {
    if (watch_ != 0) g_bus_unwatch_name(watch_);
    if (subscription_ != 0) g_dbus_connection_signal_unsubscribe(connection_.get(), subscription_);
}

void PanelToneWatch::watchOn(GObjectPtr<GDBusConnection> connection) {
    if (isAlwaysDark_) return;
    connection_ = std::move(connection);
    subscription_ = g_dbus_connection_signal_subscribe(
        connection_.get(), portalName, settingsInterface, "SettingChanged", portalPath, appearance,
        G_DBUS_SIGNAL_FLAGS_NONE, Callbacks::settingChanged, this, nullptr);
    // Asked whenever the portal is there, but never started for this.
    watch_ = g_bus_watch_name_on_connection(
        connection_.get(), portalName, G_BUS_NAME_WATCHER_FLAGS_NONE, Callbacks::appeared, nullptr, this,
        nullptr);
}

void PanelToneWatch::ask() {
    g_dbus_connection_call(
        connection_.get(), portalName, portalPath, settingsInterface, "Read",
        g_variant_new("(ss)", appearance, colorScheme), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, Callbacks::answered,
        std::make_unique<std::weak_ptr<PanelToneWatch>>(weak_from_this()).release());
}

void PanelToneWatch::preferenceIs(std::uint32_t preference) {
    const auto tone = preference == prefersDark ? PanelTone::dark : PanelTone::light;
    if (std::exchange(tone_, tone) != tone) changed_();
}

} // namespace harbrook::gtk
