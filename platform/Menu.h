#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

// How to add a menu command:
//   1. add a row to the menu's table (app/MainMenu.cpp, or status/StatusMenu.cpp);
//   2. declare its handler among the commands of AppDelegate (app/AppDelegate.h), and write it in
//      app/Commands.cpp;
//   3. name the handler in the action table (app/Actions.cpp);
//   4. say in tests/unit/CommandsTest.cpp what choosing it must do, and add it to the menus that
//      tests/unit/MainMenuTest.cpp and tests/linux/test_menu.py list.

namespace harbrook {

struct MenuItem;

/// Modifier flags of a key equivalent, with the platform's bit values.
enum ModifierFlags : std::uint32_t {
    NSEventModifierFlagShift = 0x20000,
    NSEventModifierFlagControl = 0x40000,
    NSEventModifierFlagOption = 0x80000,
    NSEventModifierFlagCommand = 0x100000,
};

/// Who answers an item's action: the application delegate, or whoever in the responder chain does so first
/// (the focused view, the window, the application, and last the application delegate).
enum class ActionTarget { responderChain, delegate };

/// What the platform adds to a menu of its own accord: the list of open windows, or the help search.
enum class MenuRole { none, windowsMenu, helpMenu };

/// A menu is a plain value: built whole, compared whole, and handed to the platform whole.
struct Menu {
    std::string title;
    std::vector<MenuItem> items;
    MenuRole role = MenuRole::none;

    Menu& addItem(MenuItem item);
    MenuItem& addItemWithTitle(
        std::string itemTitle, std::string action = {}, std::string keyEquivalent = {});
    void addSeparator();

    bool operator==(const Menu& other) const;
};

struct MenuItem {
    using RepresentedObject = std::variant<std::monostate, std::int64_t, std::string>;

    /// Shown as it stands: no character of it is a mnemonic.
    std::string title;
    /// The name of the method that answers (`goHome`, `openPort:`, `terminate:`), or empty for an item that
    /// does nothing. An item with neither action nor submenu is shown disabled.
    std::string action;
    ActionTarget target = ActionTarget::responderChain;
    /// One character, or empty for none. An upper-case letter implies Shift.
    std::string keyEquivalent;
    std::uint32_t keyEquivalentModifierMask = NSEventModifierFlagCommand;
    RepresentedObject representedObject;
    std::optional<Menu> submenu;
    bool isSeparator = false;

    [[nodiscard]] static MenuItem separatorItem() {
        MenuItem item;
        item.isSeparator = true;
        return item;
    }
    [[nodiscard]] bool isEnabled() const { return !isSeparator && (!action.empty() || submenu.has_value()); }

    bool operator==(const MenuItem&) const = default;
};

inline bool Menu::operator==(const Menu& other) const {
    return title == other.title && role == other.role && items == other.items;
}

inline Menu& Menu::addItem(MenuItem item) {
    items.push_back(std::move(item));
    return *this;
}

inline MenuItem& Menu::addItemWithTitle(
    std::string itemTitle, std::string action, std::string keyEquivalent) {
    MenuItem item;
    item.title = std::move(itemTitle);
    item.action = std::move(action);
    item.keyEquivalent = std::move(keyEquivalent);
    return items.emplace_back(std::move(item));
}

inline void Menu::addSeparator() {
    items.push_back(MenuItem::separatorItem());
}

/// Told when a menu is about to appear on the screen. Main thread.
class MenuDelegate {
public:
    virtual ~MenuDelegate() = default;
    virtual void menuWillOpen() = 0;
};

} // namespace harbrook
