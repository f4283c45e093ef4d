#include "platform/gtk/status/PanelTone.h"

#include <algorithm>
#include <array>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr const char* plasmaSettingsName = "plasmarc";

std::vector<std::filesystem::path> plasmaSettingsFiles() {
    // A global theme leaves its choices in a folder of its own, behind the user's.
    const std::filesystem::path user = g_get_user_config_dir();
    std::vector<std::filesystem::path> files = {
        user / plasmaSettingsName, user / "kdedefaults" / plasmaSettingsName};
    for (const auto* const* folder = g_get_system_config_dirs(); *folder; ++folder)
        files.push_back(std::filesystem::path(*folder) / plasmaSettingsName);
    return files;
}

} // namespace

bool isAmongDesktops(std::string_view name, std::string_view desktops) {
    while (!desktops.empty()) {
        const auto desktop = desktops.substr(0, desktops.find(':'));
        if (desktop == name) return true;
        desktops.remove_prefix(std::min(desktop.size() + 1, desktops.size()));
    }
    return false;
}

bool hasDarkPanel(std::string_view desktops) {
    constexpr std::array<std::string_view, 5> dark = {"GNOME", "Unity", "Pantheon", "Budgie", "X-Cinnamon"};
    return std::ranges::any_of(dark, [&](auto name) { return isAmongDesktops(name, desktops); });
}

std::optional<PanelTone> toneOfTheme(std::string_view name) {
    if (name.ends_with("-dark")) return PanelTone::dark;
    if (name.ends_with("-light")) return PanelTone::light;
    return std::nullopt;
}

std::optional<PanelTone> plasmaPanelTone(const std::vector<std::filesystem::path>& settings) {
    using KeyFile = std::unique_ptr<GKeyFile, FreeWith<g_key_file_unref>>;
    for (const auto& path : settings) {
        const KeyFile file(g_key_file_new());
        if (!g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr)) continue;
        const GCharPtr name(g_key_file_get_string(file.get(), "Theme", "name", nullptr));
        if (!name) continue;
        return toneOfTheme(name.get());
    }
    return std::nullopt;
}

bool isSwitchedOn(GVariant* answer) {
    const GVariantPtr boxed(g_variant_get_child_value(answer, 0));
    const GVariantPtr value(g_variant_get_variant(boxed.get()));
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value.get());
}

PanelToneWatch::PanelToneWatch(std::function<void()> changed) : changed_(std::move(changed)) {
    const auto* value = g_getenv("XDG_CURRENT_DESKTOP");
    const std::string_view desktops = value ? value : "";
    isXfce_ = isAmongDesktops("XFCE", desktops);
    if (hasDarkPanel(desktops)) {
        fixed_ = PanelTone::dark;
    } else {
        preference_.emplace([this] { update(); });
    }
    if (isAmongDesktops("KDE", desktops)) watchPlasma();
    tone_ = believed();
}

PanelTone PanelToneWatch::believed() const {
    if (fixed_) return *fixed_;
    return preference_ && preference_->current() == ColorScheme::dark ? PanelTone::dark : PanelTone::light;
}

void PanelToneWatch::watchPlasma() {
    const GCharPtr path(g_build_filename(g_get_user_config_dir(), plasmaSettingsName, nullptr));
    const auto file = GObjectPtr<GFile>::adopt(g_file_new_for_path(path.get()));
    plasmaSettings_ = GObjectPtr<GFileMonitor>::adopt(
        g_file_monitor_file(file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr));
    if (plasmaSettings_) {
        const auto changed = [](GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, void* self) noexcept {
            auto& watch = *static_cast<PanelToneWatch*>(self);
            watch.fixed_ = plasmaPanelTone(plasmaSettingsFiles());
            watch.update();
        };
        connections_.add(plasmaSettings_.get(), "changed", changed, this);
    }
    fixed_ = plasmaPanelTone(plasmaSettingsFiles());
}

void PanelToneWatch::askOn(const GObjectPtr<GDBusConnection>& connection) {
    if (!isXfce_ || fixed_) return;
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
    if (isSwitchedOn(isDark)) fixed_ = PanelTone::dark;
    update();
}

void PanelToneWatch::update() {
    const auto tone = believed();
    if (std::exchange(tone_, tone) != tone) changed_();
}

} // namespace harbrook::gtk
