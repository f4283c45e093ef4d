#include "platform/gtk/status/PanelTone.h"

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

/// A member of a tuple, taken out of however many variants it is wrapped in.
GVariantPtr unwrapped(GVariant* tuple, gsize index = 0) {
    GVariantPtr inner(g_variant_get_child_value(tuple, index));
    while (g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_VARIANT)) {
        inner.reset(g_variant_get_variant(inner.get()));
    }
    return inner;
}

std::uint32_t number(GVariant* value) {
    return g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32) ? g_variant_get_uint32(value) : 0;
}

} // namespace

struct PanelToneWatch::Callbacks {
    using Weak = std::weak_ptr<PanelToneWatch>;

    static void portalAppeared(
        GDBusConnection* /*connection*/, const char* /*name*/, const char* /*owner*/,
        gpointer self) noexcept {
        static_cast<PanelToneWatch*>(self)->askPortal();
    }

    static gpointer weakly(PanelToneWatch& watch) {
        return std::make_unique<Weak>(watch.weak_from_this()).release();
    }

    /// The watch, if it is still there, and the first value of the answer, if there is one.
    static std::pair<std::shared_ptr<PanelToneWatch>, GVariantPtr> finish(
        GObject* source, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<Weak> weak(static_cast<Weak*>(data));
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
        return {weak->lock(), answer ? unwrapped(answer.get()) : nullptr};
    }

    static void portalAnswered(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        const auto [self, value] = finish(source, result, data);
        if (self && value) self->preferenceIs(number(value.get()));
    }

    static void xfceAnswered(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        const auto [self, value] = finish(source, result, data);
        const auto isDark = value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) &&
                            g_variant_get_boolean(value.get());
        if (self && isDark) self->alwaysDark();
    }

    static void settingChanged(
        GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
        const char* /*interface*/, const char* /*signal*/, GVariant* arguments, gpointer self) noexcept {
        if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ssv)"))) return;
        const GVariantPtr key(g_variant_get_child_value(arguments, 1));
        if (std::string_view(g_variant_get_string(key.get(), nullptr)) != colorScheme) return;
        static_cast<PanelToneWatch*>(self)->preferenceIs(number(unwrapped(arguments, 2).get()));
    }
};

bool isAmongDesktops(std::string_view name, std::string_view desktops) {
    while (!desktops.empty()) {
        const auto desktop = desktops.substr(0, desktops.find(':'));
        if (desktop == name) return true;
        desktops.remove_prefix(std::min(desktop.size() + 1, desktops.size()));
    }
    return false;
}

bool hasDarkPanel(std::string_view desktops) {
    constexpr std::array<std::string_view, 4> dark = {"GNOME", "Unity", "Pantheon", "Budgie"};
    return std::ranges::any_of(dark, [&](auto name) { return isAmongDesktops(name, desktops); });
}

PanelToneWatch::PanelToneWatch(std::function<void()> changed) : changed_(std::move(changed)) {
    const auto* desktops = g_getenv("XDG_CURRENT_DESKTOP");
    if (!desktops) return;
    isXfce_ = isAmongDesktops("XFCE", desktops);
    isAlwaysDark_ = hasDarkPanel(desktops);
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
        connection_.get(), portalName, G_BUS_NAME_WATCHER_FLAGS_NONE, Callbacks::portalAppeared, nullptr,
        this, nullptr);
    if (isXfce_) askXfce();
}

void PanelToneWatch::askPortal() {
    g_dbus_connection_call(
        connection_.get(), portalName, portalPath, settingsInterface, "Read",
        g_variant_new("(ss)", appearance, colorScheme), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, Callbacks::portalAnswered, Callbacks::weakly(*this));
}

void PanelToneWatch::askXfce() {
    g_dbus_connection_call(
        connection_.get(), "org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetProperty",
        g_variant_new("(ss)", "xfce4-panel", "/panels/dark-mode"), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, Callbacks::xfceAnswered, Callbacks::weakly(*this));
}

void PanelToneWatch::alwaysDark() {
    isAlwaysDark_ = true;
    setTone(PanelTone::dark);
}

void PanelToneWatch::preferenceIs(std::uint32_t colorScheme) {
    if (!isAlwaysDark_) setTone(colorScheme == prefersDark ? PanelTone::dark : PanelTone::light);
}

void PanelToneWatch::setTone(PanelTone tone) {
    if (std::exchange(tone_, tone) != tone) changed_();
}

} // namespace harbrook::gtk
