#include "platform/gtk/app/MainMenu.h"

#include "platform/gtk/foundation/Mnemonic.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace harbrook::gtk {

namespace {

constexpr auto showWindowAction = "showWindow";

bool isEditingAction(std::string_view selector) {
    constexpr std::array<std::string_view, 6> selectors = {
        "undo:", "redo:", "cut:", "copy:", "paste:", "selectAll:"};
    return std::ranges::find(selectors, selector) != selectors.end();
}

/// A selector as an action name, which has no colon.
std::string actionName(std::string_view selector) {
    std::string name;
    for (const char character : selector)
        name += g_ascii_isalnum(character) ? character : '-';
    while (name.ends_with('-'))
        name.pop_back();
    return name;
}

} // namespace

std::string accelerator(const MenuItem& item) {
    if (item.keyEquivalent.empty()) return {};
    const gunichar key = g_utf8_get_char(item.keyEquivalent.c_str());
    const char* name = gdk_keyval_name(gdk_unicode_to_keyval(g_unichar_tolower(key)));
    if (!name) return {};
    std::string text;
    if (item.keyEquivalentModifierMask & NSEventModifierFlagCommand) text += "<Control>";
    if (item.keyEquivalentModifierMask & (NSEventModifierFlagControl | NSEventModifierFlagOption)) {
        text += "<Alt>";
    }
    if ((item.keyEquivalentModifierMask & NSEventModifierFlagShift) || g_unichar_isupper(key)) {
        text += "<Shift>";
    }
    return text + name;
}

MainMenu::MainMenu(GtkApplication* application, const Menu& menu, Chosen chosen)
    : application_(GObjectPtr<GtkApplication>::share(application)),
      chosen_(std::move(chosen)),
      windowsSection_(GObjectPtr<GMenu>::adopt(g_menu_new())) {
    bar_ = GObjectPtr<GMenu>::adopt(g_menu_new());
    for (const auto& item : menu.items) {
        if (!item.submenu) continue;
        const auto submenu = translate(*item.submenu);
        const std::string title =
            item.submenu->title.empty() ? g_get_application_name() : item.submenu->title;
        g_menu_append_submenu(bar_.get(), labelWithoutMnemonic(title).c_str(), G_MENU_MODEL(submenu.get()));
    }

    auto show =
        GObjectPtr<GSimpleAction>::adopt(g_simple_action_new(showWindowAction, G_VARIANT_TYPE_UINT32));
    connections_.add(
        show.get(), "activate",
        [](GSimpleAction*, GVariant* index, void* self) noexcept {
            const auto& chosenWindow = static_cast<MainMenu*>(self)->windowChosen_;
            if (chosenWindow) chosenWindow(g_variant_get_uint32(index));
        },
        this);
    g_action_map_add_action(G_ACTION_MAP(application), G_ACTION(show.get()));
    gtk_application_set_menubar(application, model());
}

MainMenu::~MainMenu() {
    for (const auto& command : commands_) {
        g_action_map_remove_action(G_ACTION_MAP(application_.get()), command->name.c_str());
    }
    g_action_map_remove_action(G_ACTION_MAP(application_.get()), showWindowAction);
}

GObjectPtr<GMenu> MainMenu::translate(const Menu& menu) {
    auto whole = GObjectPtr<GMenu>::adopt(g_menu_new());
    auto section = GObjectPtr<GMenu>::adopt(g_menu_new());
    const auto endSection = [&] {
        g_menu_append_section(whole.get(), nullptr, G_MENU_MODEL(section.get()));
        section = GObjectPtr<GMenu>::adopt(g_menu_new());
    };
    for (const auto& item : menu.items) {
        if (item.isSeparator) {
            endSection();
        } else {
            g_menu_append_item(section.get(), translate(item).get());
        }
    }
    endSection();
    if (menu.role == MenuRole::windowsMenu) {
        g_menu_append_section(whole.get(), nullptr, G_MENU_MODEL(windowsSection_.get()));
    }
    return whole;
}

GObjectPtr<GMenuItem> MainMenu::translate(const MenuItem& item) {
    auto entry =
        GObjectPtr<GMenuItem>::adopt(g_menu_item_new(labelWithoutMnemonic(item.title).c_str(), nullptr));
    if (item.submenu) {
        g_menu_item_set_submenu(entry.get(), G_MENU_MODEL(translate(*item.submenu).get()));
        return entry;
    }
    // Without an action of that name the toolkit shows the item disabled.
    const std::string action = item.action.empty() ? "app.none" : "app." + addCommand(item).name;
    g_menu_item_set_detailed_action(entry.get(), action.c_str());
    const std::string keys = accelerator(item);
    if (!keys.empty()) g_menu_item_set_attribute(entry.get(), "accel", "s", keys.c_str());
    return entry;
}

const MainMenu::Command& MainMenu::addCommand(const MenuItem& item) {
    std::string name = actionName(item.action);
    while (g_action_map_lookup_action(G_ACTION_MAP(application_.get()), name.c_str()))
        name += "-again";
    auto& command = *commands_.emplace_back(std::make_unique<Command>(Command{item, name, chosen_}));

    auto action = GObjectPtr<GSimpleAction>::adopt(g_simple_action_new(name.c_str(), nullptr));
    connections_.add(
        action.get(), "activate",
        [](GSimpleAction*, GVariant*, void* data) noexcept {
            const auto& chosen = *static_cast<Command*>(data);
            chosen.chosen(chosen.item);
        },
        &command);
    g_action_map_add_action(G_ACTION_MAP(application_.get()), G_ACTION(action.get()));

    const std::string keys = accelerator(item);
    if (!keys.empty() && !isEditingAction(item.action)) {
        const char* const accelerators[] = {keys.c_str(), nullptr};
        gtk_application_set_accels_for_action(application_.get(), ("app." + name).c_str(), accelerators);
    }
    return command;
}

void MainMenu::setWindowTitles(
    const std::vector<std::string>& titles, std::function<void(std::size_t)> chosen) {
    windowChosen_ = std::move(chosen);
    g_menu_remove_all(windowsSection_.get());
    guint32 index = 0;
    for (const auto& title : titles) {
        auto entry =
            GObjectPtr<GMenuItem>::adopt(g_menu_item_new(labelWithoutMnemonic(title).c_str(), nullptr));
        const std::string action = std::string("app.") + showWindowAction;
        g_menu_item_set_action_and_target(entry.get(), action.c_str(), "u", index++);
        g_menu_append_item(windowsSection_.get(), entry.get());
    }
}

GObjectPtr<GtkEventController> MainMenu::editingShortcuts() const {
    auto controller = GObjectPtr<GtkEventController>::adopt(gtk_shortcut_controller_new());
    for (const auto& command : commands_) {
        const std::string keys = accelerator(command->item);
        if (keys.empty() || !isEditingAction(command->item.action)) continue;
        gtk_shortcut_controller_add_shortcut(
            GTK_SHORTCUT_CONTROLLER(controller.get()),
            gtk_shortcut_new(
                gtk_shortcut_trigger_parse_string(keys.c_str()),
                gtk_named_action_new(("app." + command->name).c_str())));
    }
    return controller;
}

} // namespace harbrook::gtk
