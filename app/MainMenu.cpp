#include "app/MainMenu.h"

#include <initializer_list>

namespace harbrook {

namespace {

constexpr auto command = NSEventModifierFlagCommand;
constexpr auto controlCommand = NSEventModifierFlagControl | NSEventModifierFlagCommand;
constexpr auto anyone = ActionTarget::responderChain;
constexpr auto self = ActionTarget::delegate;

struct Row {
    const char* title;
    const char* keyEquivalent = "";
    const char* action = "";
    ActionTarget target = anyone;
    std::uint32_t modifiers = command;
};

constexpr Row separator = {nullptr};

Menu menu(const char* title, MenuRole role, std::initializer_list<Row> rows) {
    Menu menu;
    menu.title = title;
    menu.role = role;
    for (const auto& row : rows) {
        if (!row.title) {
            menu.addSeparator();
            continue;
        }
        auto& item = menu.addItemWithTitle(row.title, row.action, row.keyEquivalent);
        item.target = row.target;
        item.keyEquivalentModifierMask = row.modifiers;
    }
    return menu;
}

Menu applicationMenu() {
    return menu(
        "", MenuRole::none,
        {
            {"About Harbrook", "", "showAbout", self},
            {"Check for Updates…", "", "checkUpdates", self},
            {"Settings…", ",", "goSettings", self},
            {"Support Harbrook…", "", "goAbout", self},
            separator,
            {"Hide Harbrook", "h", "hide:"},
            separator,
            {"Quit Harbrook", "q", "terminate:"},
        });
}

Menu editMenu() {
    return menu(
        "Edit", MenuRole::none,
        {
            {"Undo", "z", "undo:"},
            {"Redo", "Z", "redo:"},
            separator,
            {"Cut", "x", "cut:"},
            {"Copy", "c", "copy:"},
            {"Paste", "v", "paste:"},
            {"Select All", "a", "selectAll:"},
        });
}

Menu viewMenu() {
    return menu(
        "View", MenuRole::none,
        {
            {"Show or Hide Sidebar", "s", "toggleSidebar", anyone, controlCommand},
            {"Reload", "r", "reload"},
            {"Dashboard", "1", "goHome"},
            {"Services", "2", "goServices"},
            {"Docker", "3", "goDocker"},
            {"Ports", "4", "goPorts"},
        });
}

Menu windowMenu() {
    return menu(
        "Window", MenuRole::windowsMenu,
        {
            {"Minimize", "m", "performMiniaturize:"},
            {"Close", "w", "performClose:"},
        });
}

Menu helpMenu() {
    return menu(
        "Help", MenuRole::helpMenu,
        {
            {"About & Support", "", "goAbout", self},
            {"Harbrook Website", "", "openWebsite", self},
            {"Email Support", "", "emailDeveloper", self},
            {"Show Server Log", "", "openLog", self},
        });
}

} // namespace

Menu mainMenu() {
    Menu bar;
    for (auto submenu : {applicationMenu(), editMenu(), viewMenu(), windowMenu(), helpMenu()}) {
        bar.addItemWithTitle("").submenu = std::move(submenu);
    }
    return bar;
}

} // namespace harbrook
