#include "platform/gtk/status/PanelTone.h"

#include <algorithm>
#include <array>
#include <utility>

namespace harbrook::gtk {

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
    isXfce_ = desktops && isAmongDesktops("XFCE", desktops);
    isAlwaysDark_ = desktops && hasDarkPanel(desktops);
    if (!isAlwaysDark_) preference_.emplace([this] { update(); });
    tone_ = believed();
}

PanelTone PanelToneWatch::believed() const {
    const bool isDark = isAlwaysDark_ || (preference_ && preference_->current() == ColorScheme::dark);
    return isDark ? PanelTone::dark : PanelTone::light;
}

void PanelToneWatch::askOn(const GObjectPtr<GDBusConnection>& connection) {
    if (!isXfce_ || isAlwaysDark_) return;
    using Weak = std::weak_ptr<PanelToneWatch>;
    const auto finished = [](GObject* source, GAsyncResult* result, void* data) noexcept {
        const std::unique_ptr<Weak> weak(static_cast<Weak*>(data));
        const GVariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
        const auto self = weak->lock();
        if (self && answer) self->answered(answer.get());
    };
    g_dbus_connection_call(
        connection.get(), "org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetProperty",
        g_variant_new("(ss)", "xfce4-panel", "/panels/dark-mode"), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, finished,
        std::make_unique<Weak>(weak_from_this()).release());
}

void PanelToneWatch::answered(GVariant* isDark) {
    const GVariantPtr boxed(g_variant_get_child_value(isDark, 0));
    const GVariantPtr value(g_variant_get_variant(boxed.get()));
    isAlwaysDark_ =
        g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value.get());
    update();
}

void PanelToneWatch::update() {
    const auto tone = believed();
    if (std::exchange(tone_, tone) != tone) changed_();
}

} // namespace harbrook::gtk
