#pragma once

#include "platform/gtk/bus/ColorScheme.h"
#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/status/StatusPixmap.h"

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

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
    void update();
    [[nodiscard]] PanelTone believed() const;

    std::function<void()> changed_;
    bool isAlwaysDark_ = false;
    bool isXfce_ = false;
    PanelTone tone_ = PanelTone::light;
    std::optional<DesktopColorScheme> preference_;
};

/// Whether `name` is among the desktops of XDG_CURRENT_DESKTOP, which are separated by colons.
[[nodiscard]] bool isAmongDesktops(std::string_view name, std::string_view desktops);
/// Whether one of these desktops keeps a dark panel at all times.
[[nodiscard]] bool hasDarkPanel(std::string_view desktops);

} // namespace harbrook::gtk
