#pragma once

#include "platform/Menu.h"
#include "platform/gtk/foundation/SignalConnections.h"

#include <gtk/gtk.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace harbrook::gtk {

/// The main menu in the toolkit's terms: a menu model for the menu bar, in the window or in the desktop's
/// panel, and an application action with its shortcut for every command.
class MainMenu {
public:
    using Chosen = std::function<void(const MenuItem&)>;

    MainMenu(GtkApplication* application, const Menu& menu, Chosen chosen);
    MainMenu(const MainMenu&) = delete;
    MainMenu& operator=(const MainMenu&) = delete;
    ~MainMenu();

    [[nodiscard]] GMenuModel* model() const { return G_MENU_MODEL(bar_.get()); }

    /// Lists the open windows at the end of the windows menu.
    void setWindowTitles(const std::vector<std::string>& titles, std::function<void(std::size_t)> chosen);

    /// The shortcuts of the editing commands, for a window. The focused view hears these keys first and has
    /// its own use for most of them; only what it leaves becomes a command. All other shortcuts belong to the
    /// application, before any view.
    [[nodiscard]] GObjectPtr<GtkEventController> editingShortcuts() const;

private:
    struct Command {
        MenuItem item;
        std::string name;
        const Chosen& chosen;
    };

    GObjectPtr<GMenu> translate(const Menu& menu);
    GObjectPtr<GMenuItem> translate(const MenuItem& item);
    const Command& addCommand(const MenuItem& item);

    GObjectPtr<GtkApplication> application_;
    Chosen chosen_;
    std::vector<std::unique_ptr<Command>> commands_;
    GObjectPtr<GMenu> windowsSection_;
    std::function<void(std::size_t)> windowChosen_;
    GObjectPtr<GMenu> bar_;
    SignalConnections connections_;
};

/// A key equivalent as the toolkit writes it, or empty: Control stands for Command and Alt for Control.
[[nodiscard]] std::string accelerator(const MenuItem& item);

} // namespace harbrook::gtk
