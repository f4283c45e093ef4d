#pragma once

#include "platform/gtk/bus/ColorScheme.h"
#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/foundation/SignalConnections.h"
#include "platform/gtk/status/StatusPixmap.h"

#include <gio/gio.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace harbrook::gtk {

/// The tone of the panel, as well as it can be told from outside: some desktops have a dark panel whatever
/// the user prefers for windows, one has a setting for it; elsewhere it follows that preference. Main thread.
class PanelToneWatch : public std::enable_shared_from_this<PanelToneWatch> {
public:
    /// `changed` is called whenever `tone` gives another answer than before, but not before this returns.
    explicit PanelToneWatch(std::function<void()> changed);

    /// Asks the desktop for the setting of its panel, if it is one that has such a setting.
    void askOn(const GObjectPtr<GDBusConnection>& connection);
    [[nodiscard]] PanelTone tone() const { return tone_; }

private:
    void answered(GVariant* isDark);
    void watchPlasma();
    void update();
    [[nodiscard]] PanelTone believed() const;

    std::function<void()> changed_;
    bool isXfce_ = false;
    /// What the desktop's panel is in any case.
    std::optional<PanelTone> fixed_;
    PanelTone tone_ = PanelTone::light;
    std::optional<DesktopColorScheme> preference_;
    GObjectPtr<GFileMonitor> plasmaSettings_;
    SignalConnections connections_;
};

/// What a desktop answers to the question for one of its settings: whether that is the boolean true.
[[nodiscard]] bool isSwitchedOn(GVariant* answer);

/// Whether `name` is among the desktops of XDG_CURRENT_DESKTOP, which are separated by colons.
[[nodiscard]] bool isAmongDesktops(std::string_view name, std::string_view desktops);
/// Whether one of these desktops keeps a dark panel at all times.
[[nodiscard]] bool hasDarkPanel(std::string_view desktops);
/// The tone that a theme of Plasma's has by its name; none for one that follows the colours of windows.
[[nodiscard]] std::optional<PanelTone> toneOfTheme(std::string_view name);
/// The tone that a panel of Plasma has by its theme, as the first of these files tells that names one
/// ("Theme", "name" in plasmarc), or none for a theme that follows the colours of windows.
[[nodiscard]] std::optional<PanelTone> plasmaPanelTone(const std::vector<std::filesystem::path>& settings);

} // namespace harbrook::gtk
