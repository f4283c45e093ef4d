#include "app/MainMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace harbrook::tests {
namespace {

using testing::ElementsAre;

/// One line for an item: title, key, modifiers, action, target.
std::string row(const MenuItem& item) {
    if (item.isSeparator) return "-";
    std::ostringstream line;
    line << item.title << " | " << item.keyEquivalent << " | 0x" << std::hex << item.keyEquivalentModifierMask
         << " | " << item.action << " | " << (item.target == ActionTarget::delegate ? "self" : "none");
    return line.str();
}

std::vector<std::string> rows(const Menu& menu) {
    std::vector<std::string> lines;
    for (const auto& item : menu.items)
        lines.push_back(row(item));
    return lines;
}

const Menu& submenu(const Menu& bar, std::size_t index) {
    return bar.items.at(index).submenu.value();
}

TEST(MainMenu, has_five_menus_below_untitled_items) {
    const auto bar = mainMenu();
    std::vector<std::string> titles;
    for (const auto& item : bar.items) {
        EXPECT_EQ(item.title, "");
        EXPECT_EQ(item.action, "");
        EXPECT_FALSE(item.isSeparator);
        titles.push_back(item.submenu.value().title);
    }
    EXPECT_THAT(titles, ElementsAre("", "Edit", "View", "Window", "Help"));
}

TEST(MainMenu, names_the_window_and_help_menus_to_the_platform) {
    const auto bar = mainMenu();
    std::vector<MenuRole> roles;
    for (const auto& item : bar.items)
        roles.push_back(item.submenu.value().role);
    EXPECT_THAT(
        roles,
        ElementsAre(
            MenuRole::none, MenuRole::none, MenuRole::none, MenuRole::windowsMenu, MenuRole::helpMenu));
}

TEST(MainMenu, the_application_menu) {
    EXPECT_THAT(
        rows(submenu(mainMenu(), 0)), ElementsAre(
                                          "About Harbrook |  | 0x100000 | showAbout | self",
                                          "Check for Updates\xE2\x80\xA6 |  | 0x100000 | checkUpdates | self",
                                          "Settings\xE2\x80\xA6 | , | 0x100000 | goSettings | self",
                                          "Support Harbrook\xE2\x80\xA6 |  | 0x100000 | goAbout | self", "-",
                                          "Hide Harbrook | h | 0x100000 | hide: | none", "-",
                                          "Quit Harbrook | q | 0x100000 | terminate: | none"));
}

TEST(MainMenu, the_edit_menu) {
    EXPECT_THAT(
        rows(submenu(mainMenu(), 1)),
        ElementsAre(
            "Undo | z | 0x100000 | undo: | none", "Redo | Z | 0x100000 | redo: | none", "-",
            "Cut | x | 0x100000 | cut: | none", "Copy | c | 0x100000 | copy: | none",
            "Paste | v | 0x100000 | paste: | none", "Select All | a | 0x100000 | selectAll: | none"));
}

TEST(MainMenu, the_view_menu) {
    EXPECT_THAT(
        rows(submenu(mainMenu(), 2)),
        ElementsAre(
            "Show or Hide Sidebar | s | 0x140000 | toggleSidebar | none",
            "Reload | r | 0x100000 | reload | none", "Dashboard | 1 | 0x100000 | goHome | none",
            "Services | 2 | 0x100000 | goServices | none", "Docker | 3 | 0x100000 | goDocker | none",
            "Ports | 4 | 0x100000 | goPorts | none"));
}

TEST(MainMenu, the_window_menu) {
    EXPECT_THAT(
        rows(submenu(mainMenu(), 3)), ElementsAre(
                                          "Minimize | m | 0x100000 | performMiniaturize: | none",
                                          "Close | w | 0x100000 | performClose: | none"));
}

TEST(MainMenu, the_help_menu) {
    EXPECT_THAT(
        rows(submenu(mainMenu(), 4)), ElementsAre(
                                          "About & Support |  | 0x100000 | goAbout | self",
                                          "Harbrook Website |  | 0x100000 | openWebsite | self",
                                          "Email Support |  | 0x100000 | emailDeveloper | self",
                                          "Show Server Log |  | 0x100000 | openLog | self"));
}

TEST(MainMenu, no_item_carries_an_object_or_is_disabled) {
    for (const auto& menu : mainMenu().items) {
        for (const auto& item : menu.submenu.value().items) {
            EXPECT_TRUE(std::holds_alternative<std::monostate>(item.representedObject)) << item.title;
            EXPECT_EQ(item.isEnabled(), !item.isSeparator) << item.title;
            EXPECT_FALSE(item.submenu) << item.title;
        }
    }
}

} // namespace
} // namespace harbrook::tests
