#pragma once

#include "platform/Color.h"
#include "platform/gtk/bus/ColorScheme.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <vector>

namespace harbrook::gtk {

/// Whether the program looks light or dark, by the rule that the toolkit and the web engine go by too, so
/// that window, page and `prefers-color-scheme` agree: a theme named in the environment (GTK_THEME) decides;
/// without one, the desktop's colour scheme is carried over to the toolkit's settings, and those decide.
/// Main thread, after GTK has started.
class Appearance final : public harbrook::Appearance {
public:
    /// The appearance of the whole program, made at the first call.
    [[nodiscard]] static Appearance& current();

    [[nodiscard]] bool isDark() const { return dark_; }
    [[nodiscard]] std::optional<AppearanceName> bestMatchFromAppearancesWithNames(
        const std::vector<AppearanceName>& names) const override;
    /// What `color` amounts to now.
    [[nodiscard]] GdkRGBA resolve(const Color& color) const;

    /// Calls `changed` after every switch between light and dark for as long as the result is kept.
    [[nodiscard]] std::shared_ptr<void> onChange(std::function<void()> changed);

private:
    using Observer = std::function<void()>;

    Appearance();
    void followDesktop();
    void update();

    GtkSettings* settings_;
    bool dark_ = false;
    ColorScheme followed_ = ColorScheme::noPreference;
    std::vector<std::weak_ptr<Observer>> observers_;
    SignalConnections connections_;
    DesktopColorScheme desktop_;
};

} // namespace harbrook::gtk
