#include "platform/gtk/status/MenuVariant.h"
#include "platform/gtk/foundation/Mnemonic.h"

#include "tests/gtk/MenuFixture.h"

#include <gtest/gtest.h>

namespace harbrook::tests {

namespace {

using namespace gtk;

std::string printed(GVariant* variant) {
    const GVariantPtr owned(g_variant_ref_sink(variant));
    const GCharPtr text(g_variant_print(owned.get(), FALSE));
    return text.get();
}

std::string properties(const MenuItem& item, const PropertyNames& names = {}) {
    return printed(menuProperties(&item, names));
}

MenuLayout layoutOf(const Menu& menu) {
    MenuIds ids;
    return updatedLayout({}, menu, ids).layout;
}

TEST(MenuVariant, doubles_underscores) {
    EXPECT_EQ(labelWithoutMnemonic("my_app__x"), "my__app____x");
    EXPECT_EQ(labelWithoutMnemonic("Größe"), "Größe");
    EXPECT_EQ(labelWithoutMnemonic(""), "");
}

TEST(MenuVariant, has_the_root_show_its_rows_as_a_menu) {
    EXPECT_EQ(printed(menuProperties(nullptr, {})), "{'children-display': <'submenu'>}");
}

TEST(MenuVariant, publishes_only_what_differs_from_the_defaults) {
    MenuItem item;
    item.title = "Go";
    item.action = "go:";
    EXPECT_EQ(properties(item), "{'label': <'Go'>}");
    item.action.clear();
    EXPECT_EQ(properties(item), "{'label': <'Go'>, 'enabled': <false>}");
    item.submenu = Menu{};
    EXPECT_EQ(properties(item), "{'label': <'Go'>, 'children-display': <'submenu'>}");
    EXPECT_EQ(properties(MenuItem::separatorItem()), "{'type': <'separator'>}");
}

TEST(MenuVariant, publishes_key_equivalents_in_the_desktops_keys) {
    MenuItem item;
    item.title = "Go";
    item.action = "go:";
    item.keyEquivalent = "o";
    EXPECT_EQ(properties(item, {"shortcut"}), "{'shortcut': <[['Control', 'o']]>}");
    item.keyEquivalent = "O";
    EXPECT_EQ(properties(item, {"shortcut"}), "{'shortcut': <[['Control', 'Shift', 'o']]>}");
    item.keyEquivalent = "s";
    item.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagControl;
    EXPECT_EQ(properties(item, {"shortcut"}), "{'shortcut': <[['Control', 'Alt', 's']]>}");
    item.keyEquivalentModifierMask = 0;
    EXPECT_EQ(properties(item, {"shortcut"}), "{'shortcut': <[['s']]>}");
}

TEST(MenuVariant, answers_only_the_names_that_were_asked_for) {
    MenuItem item;
    item.title = "Go";
    EXPECT_EQ(properties(item, {"enabled"}), "{'enabled': <false>}");
    EXPECT_EQ(properties(item, {"icon-name"}), "{}");
}

TEST(MenuVariant, replaces_what_the_bus_cannot_carry) {
    MenuItem item;
    item.title = std::string("a\0b", 3);
    item.action = "go:";
    EXPECT_EQ(properties(item), "{'label': <'a\uFFFDb'>}");
    item.title = "\xff";
    EXPECT_EQ(properties(item), "{'label': <'\uFFFD'>}");
}

TEST(MenuVariant, answers_for_a_row_once_however_often_it_is_named) {
    const auto layout = layoutOf(unreachable());
    const std::vector<std::int32_t> often(1000, 3);
    EXPECT_EQ(printed(menuPropertiesOfRows(layout, often, {"enabled"})), "[(3, {'enabled': <false>})]");
    EXPECT_EQ(
        printed(menuPropertiesOfRows(layout, {3, 2, 99, 3, 2}, {"type"})),
        "[(3, {}), (2, {'type': <'separator'>})]");
}

TEST(MenuVariant, goes_as_deep_as_it_is_asked) {
    const auto layout = layoutOf(menuOf({runningProject("a", {1})}));
    const auto depth = [&](int levels) { return printed(menuTree(layout, 0, levels, {"none"})); };
    EXPECT_EQ(depth(0), "(0, {}, [])");
    EXPECT_NE(depth(-1), depth(1));
    EXPECT_EQ(depth(-1), depth(2));
    EXPECT_EQ(depth(-1), depth(200));
}

TEST(MenuVariant, is_the_menu_of_the_server_that_is_not_reachable) {
    EXPECT_EQ(
        printed(menuTree(layoutOf(unreachable()), 0, -1, {})),
        "(0, {'children-display': <'submenu'>}, ["
        "<(1, {'label': <'Open Harbrook'>, 'shortcut': <[['Control', 'o']]>}, @av [])>, "
        "<(2, {'type': <'separator'>}, @av [])>, "
        "<(3, {'label': <'Server not reachable'>, 'enabled': <false>}, @av [])>, "
        "<(4, {'type': <'separator'>}, @av [])>, "
        "<(5, {'label': <'Quit Harbrook'>, 'shortcut': <[['Control', 'q']]>}, @av [])>])");
}

} // namespace

} // namespace harbrook::tests
