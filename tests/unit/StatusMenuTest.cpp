#include "status/StatusMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace harbrook::tests {
namespace {

using testing::ElementsAre;

/// The menu as an indented list, one line an item: its title, and in brackets its action with what it acts
/// on. An item that does nothing has no brackets.
void outline(const Menu& menu, const std::string& indent, std::vector<std::string>& lines) {
    for (const auto& item : menu.items) {
        auto line = indent + (item.isSeparator ? "-" : item.title);
        if (!item.action.empty()) {
            line += " [" + item.action;
            if (const auto* number = std::get_if<std::int64_t>(&item.representedObject))
                line += " " + std::to_string(*number);
            if (const auto* text = std::get_if<std::string>(&item.representedObject)) line += " " + *text;
            line += "]";
        }
        lines.push_back(std::move(line));
        if (item.submenu) outline(*item.submenu, indent + "    ", lines);
    }
}

std::vector<std::string> outline(const std::optional<State>& state) {
    std::vector<std::string> lines;
    outline(statusMenu(state), "", lines);
    return lines;
}

State::Project running(std::string name, std::vector<std::int64_t> ports) {
    State::Project project;
    project.path = "/p/" + name;
    project.name = std::move(name);
    project.running = true;
    project.ports = std::move(ports);
    return project;
}

State::Project saved(std::string name) {
    State::Project project;
    project.path = "/p/" + name;
    project.name = std::move(name);
    project.hasCommand = true;
    return project;
}

TEST(StatusMenu, without_a_snapshot) {
    EXPECT_THAT(
        outline(std::nullopt),
        ElementsAre(
            "Open Harbrook [openFromMenu]", "-", "Server not reachable", "-", "Quit Harbrook [terminate:]"));
}

TEST(StatusMenu, with_nothing_running_and_nothing_saved) {
    EXPECT_THAT(
        outline(State{}),
        ElementsAre(
            "Open Harbrook [openFromMenu]", "-", "No projects running", "-", "No other saved start commands",
            "-", "PostgreSQL: 0   Redis: 0   Containers: 0", "-", "Quit Harbrook [terminate:]"));
}

TEST(StatusMenu, with_projects_running_and_saved) {
    State state;
    auto shop = running("shop", {3000, 5173, 8080, 9000});
    shop.appRunning = true;
    state.projects = {shop, saved("docs"), running("blog", {})};
    state.stats = {99, 1, 2, 3};
    EXPECT_THAT(
        outline(state), ElementsAre(
                            "Open Harbrook [openFromMenu]", "-", "Running projects",
                            "shop   :3000 :5173 :8080", "    Open localhost:3000 in browser [openPort: 3000]",
                            "    Open localhost:5173 in browser [openPort: 5173]",
                            "    Open localhost:8080 in browser [openPort: 8080]",
                            "    Open localhost:9000 in browser [openPort: 9000]",
                            "    Show in Harbrook [openProject: /p/shop]", "    -",
                            "    Stop shop [toggleProject: stop\n/p/shop]", "blog   ",
                            "    Show in Harbrook [openProject: /p/blog]", "-", "Start a project",
                            "    docs [toggleProject: start\n/p/docs]", "-",
                            "PostgreSQL: 1   Redis: 2   Containers: 3", "-", "Quit Harbrook [terminate:]"));
}

TEST(StatusMenu, targets_and_key_equivalents) {
    State state;
    auto shop = running("shop", {3000});
    shop.appRunning = true;
    state.projects = {shop, saved("docs")};
    const auto menu = statusMenu(state);
    EXPECT_EQ(menu.items.front().keyEquivalent, "o");
    EXPECT_EQ(menu.items.front().keyEquivalentModifierMask, NSEventModifierFlagCommand);
    EXPECT_EQ(menu.items.front().target, ActionTarget::delegate);
    EXPECT_EQ(menu.items.back().keyEquivalent, "q");
    EXPECT_EQ(menu.items.back().keyEquivalentModifierMask, NSEventModifierFlagCommand);
    EXPECT_EQ(menu.items.back().target, ActionTarget::responderChain);
    for (const auto& item : menu.items) {
        if (!item.submenu) continue;
        EXPECT_EQ(item.action, "") << item.title;
        EXPECT_TRUE(item.isEnabled()) << item.title;
        for (const auto& inner : item.submenu->items) {
            EXPECT_EQ(inner.keyEquivalent, "") << inner.title;
            EXPECT_TRUE(inner.isSeparator || inner.target == ActionTarget::delegate) << inner.title;
        }
    }
}

TEST(StatusMenu, inert_items_are_disabled) {
    for (const auto& state : {std::optional<State>(), std::optional(State{})}) {
        for (const auto& item : statusMenu(state).items) {
            const bool acts = item.title == "Open Harbrook" || item.title == "Quit Harbrook";
            EXPECT_EQ(item.isEnabled(), acts) << item.title;
        }
    }
}

TEST(StatusMenu, a_title_shows_three_ports_and_a_submenu_offers_five) {
    State state;
    state.projects = {running("a", {1, 2, 3, 4, 5, 6, 7})};
    const auto menu = statusMenu(state);
    const auto& item = menu.items.at(3);
    EXPECT_EQ(item.title, "a   :1 :2 :3");
    std::vector<std::string> lines;
    outline(*item.submenu, "", lines);
    EXPECT_THAT(
        lines, ElementsAre(
                   "Open localhost:1 in browser [openPort: 1]", "Open localhost:2 in browser [openPort: 2]",
                   "Open localhost:3 in browser [openPort: 3]", "Open localhost:4 in browser [openPort: 4]",
                   "Open localhost:5 in browser [openPort: 5]", "Show in Harbrook [openProject: /p/a]"));
}

TEST(StatusMenu, trailing_blanks_are_kept_when_there_is_no_port) {
    State state;
    state.projects = {running("a", {}), running("b", {80}), running("c", {80, 81})};
    const auto menu = statusMenu(state);
    EXPECT_EQ(menu.items.at(3).title, "a   ");
    EXPECT_EQ(menu.items.at(4).title, "b   :80");
    EXPECT_EQ(menu.items.at(5).title, "c   :80 :81");
}

TEST(StatusMenu, titles_are_the_names_as_they_are) {
    State state;
    state.projects = {running("_a & <b>\n\xF0\x9F\x98\x80", {})};
    EXPECT_EQ(statusMenu(state).items.at(3).title, "_a & <b>\n\xF0\x9F\x98\x80   ");
}

TEST(StatusMenu, numbers_are_written_in_full) {
    State state;
    state.projects = {running("a", {-1, 9223372036854775807})};
    state.stats = {0, -5, 1'000'000, 9223372036854775807};
    const auto menu = statusMenu(state);
    EXPECT_EQ(menu.items.at(3).title, "a   :-1 :9223372036854775807");
    EXPECT_EQ(menu.items.at(7).title, "PostgreSQL: -5   Redis: 1000000   Containers: 9223372036854775807");
}

TEST(StatusMenu, stop_is_offered_only_for_what_the_application_started) {
    const auto submenuSize = [](std::optional<bool> appRunning) {
        State state;
        state.projects = {running("a", {})};
        state.projects[0].appRunning = appRunning;
        return statusMenu(state).items.at(3).submenu->items.size();
    };
    EXPECT_EQ(submenuSize(true), 3U);
    EXPECT_EQ(submenuSize(false), 1U);
    EXPECT_EQ(submenuSize(std::nullopt), 1U);
}

TEST(StatusMenu, the_menubar_choice_hides_only_when_it_is_false) {
    const auto listed = [](std::optional<bool> menubar) {
        State state;
        state.projects = {running("a", {})};
        state.projects[0].menubar = menubar;
        return listedProjectCount(state);
    };
    EXPECT_EQ(listed(true), 1U);
    EXPECT_EQ(listed(std::nullopt), 1U);
    EXPECT_EQ(listed(false), 0U);
}

TEST(StatusMenu, a_hidden_project_is_in_no_list_and_in_no_count) {
    State state;
    auto hidden = running("hidden", {1});
    hidden.menubar = false;
    hidden.hasCommand = true;
    state.projects = {hidden};
    EXPECT_THAT(outline(state).at(2), "No projects running");
    EXPECT_THAT(outline(state).at(4), "No other saved start commands");
    EXPECT_EQ(statusTitle(state), "");
}

TEST(StatusMenu, saved_commands_depend_on_all_three_choices_and_not_on_running) {
    const std::optional<bool> values[] = {std::nullopt, false, true};
    for (const auto hasCommand : values) {
        for (const auto appRunning : values) {
            for (const auto menubar : values) {
                for (const bool isRunning : {false, true}) {
                    State state;
                    state.projects = {{"a", "/p/a", isRunning, {}, hasCommand, appRunning, menubar}};
                    const bool expected = hasCommand == true && appRunning != true && menubar != false;
                    const auto lines = outline(state);
                    EXPECT_EQ(testing::Value(lines, testing::Contains("Start a project")), expected);
                    EXPECT_EQ(
                        testing::Value(lines, testing::Contains("No other saved start commands")), !expected);
                }
            }
        }
    }
}

TEST(StatusMenu, lists_keep_the_servers_order) {
    State state;
    state.projects = {running("z", {}), saved("y"), running("a", {}), saved("b")};
    std::vector<std::string> lines = outline(state);
    std::erase_if(
        lines, [](const std::string& line) { return line.find('[') != std::string::npos || line == "-"; });
    EXPECT_THAT(
        lines, ElementsAre(
                   "Running projects", "z   ", "a   ", "Start a project",
                   "PostgreSQL: 0   Redis: 0   Containers: 0"));
    const auto menu = statusMenu(state);
    const auto& commands = menu.items.at(6).submenu.value();
    EXPECT_EQ(commands.items.at(0).title, "y");
    EXPECT_EQ(commands.items.at(1).title, "b");
}

TEST(StatusTitle, is_a_blank_and_the_count_or_nothing) {
    EXPECT_EQ(statusTitle(std::nullopt), "");
    EXPECT_EQ(statusTitle(State{}), "");
    State state;
    state.projects = {running("a", {}), saved("b"), running("c", {})};
    EXPECT_EQ(statusTitle(state), " 2");
    state.projects.assign(120, running("a", {}));
    EXPECT_EQ(statusTitle(state), " 120");
}

} // namespace
} // namespace harbrook::tests
