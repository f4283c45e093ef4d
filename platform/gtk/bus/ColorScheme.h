#pragma once

#include "platform/gtk/foundation/SignalConnections.h"

#include <gio/gio.h>

#include <functional>
#include <optional>
#include <string_view>

namespace harbrook::gtk {

enum class ColorScheme { noPreference, dark, light };

/// What the settings portal says: a number, however often it is wrapped. None for anything else.
[[nodiscard]] std::optional<ColorScheme> colorSchemeFromPortal(GVariant* value);
/// What the desktop's settings schema says.
[[nodiscard]] ColorScheme colorSchemeFromSettings(std::string_view value);

/// The look that the user has chosen for the desktop as a whole. The settings portal has the last word; until
/// it answers, and where there is none, the desktop's own settings schema has it. Main thread.
class DesktopColorScheme {
public:
    /// Calls `changed` whenever the choice becomes another one, and maybe already before it returns. Asks the
    /// portal, now and whenever one comes, without waiting for it: a portal that is stalled, or a bus that is
    /// dead, changes nothing but that no answer comes.
    explicit DesktopColorScheme(std::function<void()> changed);
    DesktopColorScheme(const DesktopColorScheme&) = delete;
    DesktopColorScheme& operator=(const DesktopColorScheme&) = delete;
    ~DesktopColorScheme();

    [[nodiscard]] ColorScheme current() const { return current_; }

private:
    void readSettingsSchema();
    void lookForPortal();
    void listenToPortal(GObjectPtr<GDBusConnection> bus);
    void askPortal();
    void portalSays(GVariant* value);
    void become(ColorScheme scheme);

    std::function<void()> changed_;
    ColorScheme current_ = ColorScheme::noPreference;
    bool portalAnswered_ = false;
    GObjectPtr<GSettings> settings_;
    SignalConnections connections_;
    GObjectPtr<GDBusConnection> bus_;
    guint subscription_ = 0;
    guint watch_ = 0;
    GObjectPtr<GCancellable> pending_;
};

} // namespace harbrook::gtk
