#include "tests/gtk/MenuFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace harbrook::tests {

namespace {

using namespace gtk;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// A published menu that is replaced again and again.
class Published {
public:
    explicit Published(const Menu& menu) { replace(menu); }

    MenuUpdate::Kind replace(const Menu& menu) {
        auto update = updatedLayout(layout, menu, ids);
        changed = update.changed;
        layout = std::move(update.layout);
        return update.kind;
    }

    MenuIds ids;
    MenuLayout layout;
    std::vector<std::int32_t> changed;
};

std::vector<std::string> titlesBelow(const MenuLayout& layout, std::size_t index) {
    std::vector<std::string> titles;
    for (const auto child : layout.childrenOf(index))
        titles.push_back(layout.rows()[child].item->title);
    return titles;
}

/// What a row does, whatever it is called at the moment.
std::string meaning(const MenuItem& item) {
    if (item.submenu) {
        for (const auto& choice : item.submenu->items) {
            if (choice.action == "openProject:")
                return "project " + std::get<std::string>(choice.representedObject);
        }
        return item.title;
    }
    if (item.isSeparator || item.action.empty()) return "";
    if (const auto* text = std::get_if<std::string>(&item.representedObject)) return item.action + *text;
    if (const auto* port = std::get_if<std::int64_t>(&item.representedObject)) {
        return item.action + std::to_string(*port);
    }
    return item.action;
}

TEST(MenuLayout, is_empty_at_first) {
    const MenuLayout layout;
    ASSERT_EQ(layout.rows().size(), 1U);
    EXPECT_EQ(layout.rows()[0].id, 0);
    EXPECT_EQ(layout.indexOf(0), 0U);
    EXPECT_EQ(layout.indexOf(1), std::nullopt);
    EXPECT_EQ(layout.indexOf(-1), std::nullopt);
}

TEST(MenuLayout, holds_the_rows_in_reading_order) {
    const Published published(menuOf({runningProject("shop", {3000})}));
    const auto& layout = published.layout;
    EXPECT_THAT(
        titlesBelow(layout, 0),
        ElementsAre(
            "Open Harbrook", "", "Running projects", "shop   :3000", "", "No other saved start commands", "",
            "PostgreSQL: 0   Redis: 0   Containers: 0", "", "Quit Harbrook"));
    EXPECT_THAT(
        titlesBelow(layout, *layout.indexOf(idOf(layout, "shop   :3000"))),
        ElementsAre("Open localhost:3000 in browser", "Show in Harbrook"));
    EXPECT_THAT(titlesBelow(layout, *layout.indexOf(idOf(layout, "Quit Harbrook"))), IsEmpty());
}

TEST(MenuLayout, gives_every_row_its_own_id) {
    const Published published(menuOf(manyProjects(20)));
    std::set<std::int32_t> ids;
    for (const auto& row : published.layout.rows())
        ids.insert(row.id);
    EXPECT_EQ(ids.size(), published.layout.rows().size());
    for (std::size_t i = 0; i < published.layout.rows().size(); ++i) {
        EXPECT_EQ(published.layout.indexOf(published.layout.rows()[i].id), i);
    }
}

TEST(MenuUpdate, is_nothing_for_an_equal_menu) {
    Published published(menuOf({runningProject("shop", {3000}), savedProject("blog")}));
    const auto id = idOf(published.layout, "shop   :3000");
    EXPECT_EQ(
        published.replace(menuOf({runningProject("shop", {3000}), savedProject("blog")})),
        MenuUpdate::Kind::nothing);
    EXPECT_EQ(idOf(published.layout, "shop   :3000"), id);
}

TEST(MenuUpdate, is_only_properties_when_a_label_changes) {
    Published published(menuOf({runningProject("shop", {3000})}));
    const auto counts = idOf(published.layout, "PostgreSQL: 0   Redis: 0   Containers: 0");
    EXPECT_EQ(
        published.replace(menuOf({runningProject("shop", {3000})}, {1, 2, 0, 0})),
        MenuUpdate::Kind::properties);
    EXPECT_THAT(published.changed, ElementsAre(counts));
    EXPECT_EQ(idOf(published.layout, "PostgreSQL: 2   Redis: 0   Containers: 0"), counts);
}

TEST(MenuUpdate, is_only_properties_when_a_row_is_enabled) {
    Menu menu;
    menu.addItemWithTitle("Later");
    Published published(menu);
    const auto id = idOf(published.layout, "Later");
    menu.items[0].action = "now:";
    EXPECT_EQ(published.replace(menu), MenuUpdate::Kind::properties);
    EXPECT_THAT(published.changed, ElementsAre(id));
}

TEST(MenuUpdate, is_the_layout_when_rows_come_go_or_move) {
    const auto a = runningProject("a");
    const auto b = runningProject("b");
    Published published(menuOf({a}));
    EXPECT_EQ(published.replace(menuOf({a, b})), MenuUpdate::Kind::layout);
    EXPECT_EQ(published.replace(menuOf({b, a})), MenuUpdate::Kind::layout);
    EXPECT_EQ(published.replace(menuOf({a})), MenuUpdate::Kind::layout);
    EXPECT_EQ(published.replace(unreachable()), MenuUpdate::Kind::layout);
    EXPECT_EQ(published.replace({}), MenuUpdate::Kind::layout);
    EXPECT_EQ(published.replace({}), MenuUpdate::Kind::nothing);
}

TEST(MenuUpdate, is_the_layout_when_a_key_equivalent_changes) {
    Menu menu;
    menu.addItemWithTitle("Open", "open", "o");
    Published published(menu);
    menu.items[0].keyEquivalent = "p";
    EXPECT_EQ(published.replace(menu), MenuUpdate::Kind::layout);
}

TEST(MenuUpdate, keeps_a_projects_id_when_its_ports_change) {
    auto shop = runningProject("shop");
    Published published(menuOf({runningProject("a"), shop}));
    const auto id = idOf(published.layout, "shop   ");
    shop.ports = {3000, 5173};
    EXPECT_EQ(published.replace(menuOf({runningProject("a"), shop})), MenuUpdate::Kind::layout);
    EXPECT_EQ(idOf(published.layout, "shop   :3000 :5173"), id);
}

TEST(MenuUpdate, keeps_a_projects_id_when_it_moves) {
    Published published(menuOf({runningProject("a"), runningProject("b"), runningProject("c")}));
    const auto a = idOf(published.layout, "a   ");
    const auto c = idOf(published.layout, "c   ");
    published.replace(menuOf({runningProject("c"), runningProject("d"), runningProject("a")}));
    EXPECT_EQ(idOf(published.layout, "a   "), a);
    EXPECT_EQ(idOf(published.layout, "c   "), c);
}

TEST(MenuUpdate, tells_projects_of_one_name_apart) {
    auto first = runningProject("shop");
    auto second = runningProject("shop");
    second.path = "/elsewhere/shop";
    Published published(menuOf({first, second}));
    const auto& rows = published.layout.rows();
    const auto children = published.layout.childrenOf(0);
    const auto firstId = rows[children[3]].id;
    const auto secondId = rows[children[4]].id;

    published.replace(menuOf({second}));
    EXPECT_EQ(idOf(published.layout, "shop   "), secondId);
    published.replace(menuOf({first}));
    EXPECT_NE(idOf(published.layout, "shop   "), secondId);
    EXPECT_NE(idOf(published.layout, "shop   "), firstId);
}

TEST(MenuUpdate, keeps_the_start_menus_id_while_one_choice_stays) {
    Published published(menuOf({savedProject("a"), savedProject("b")}));
    const auto id = idOf(published.layout, "Start a project");
    published.replace(menuOf({savedProject("b"), savedProject("c")}));
    EXPECT_EQ(idOf(published.layout, "Start a project"), id);
}

TEST(MenuUpdate, keeps_the_headings_id) {
    Published published(menuOf({}));
    const auto id = idOf(published.layout, "No projects running");
    published.replace(menuOf({runningProject("a")}));
    EXPECT_EQ(idOf(published.layout, "Running projects"), id);
}

TEST(MenuIds, are_not_used_again_at_once) {
    Published published(menuOf({}));
    std::map<std::int32_t, std::string> meanings;
    for (int round = 0; round < 200; ++round) {
        published.replace(menuOf({runningProject("project-" + std::to_string(round), {3000 + round})}));
        for (const auto& row : published.layout.rows()) {
            if (!row.item || meaning(*row.item).empty()) continue;
            const auto [known, isNew] = meanings.emplace(row.id, meaning(*row.item));
            EXPECT_EQ(known->second, meaning(*row.item)) << "row " << row.id << " in round " << round;
        }
    }
}

TEST(MenuIds, stay_small_however_often_the_menu_changes) {
    Published published(menuOf({}));
    std::int32_t highest = 0;
    for (int round = 0; round < 20000; ++round) {
        published.replace(menuOf({runningProject("project-" + std::to_string(round))}));
        for (const auto& row : published.layout.rows())
            highest = std::max(highest, row.id);
    }
    EXPECT_LT(highest, MenuIds::limit);
}

TEST(MenuIds, go_on_above_the_limit_rather_than_lose_rows) {
    Published published(menuOf(manyProjects(7000)));
    EXPECT_GT(published.layout.rows().size(), static_cast<std::size_t>(MenuIds::limit));
    std::set<std::int32_t> ids;
    for (const auto& row : published.layout.rows())
        ids.insert(row.id);
    EXPECT_EQ(ids.size(), published.layout.rows().size());
}

/// Any sequence of menus: the layout always is the menu, ids are unique, and a row that stays keeps its id.
TEST(MenuUpdate, holds_for_any_sequence) {
    std::mt19937 random(20240501);
    const auto below = [&](unsigned limit) { return random() % limit; };
    Published published(menuOf({}));
    for (int round = 0; round < 2000; ++round) {
        std::vector<State::Project> projects;
        for (const char name : {'a', 'b', 'c', 'd', 'e', 'f'}) {
            if (below(3) == 0) continue;
            auto project = runningProject(std::string(1, name));
            project.running = below(4) != 0;
            project.appRunning = below(2) == 0;
            project.hasCommand = below(2) == 0;
            for (auto i = below(3); i > 0; --i)
                project.ports.push_back(3000 + below(5));
            projects.push_back(project);
        }
        std::ranges::shuffle(projects, random);
        const auto menu =
            below(10) == 0 ? unreachable() : menuOf(projects, {0, static_cast<std::int64_t>(below(2)), 0, 0});

        const auto before = published.layout;
        const auto kind = published.replace(menu);
        const auto& now = published.layout;

        ASSERT_EQ(now.menu(), menu);
        ASSERT_EQ(before.menu() == menu, kind == MenuUpdate::Kind::nothing);
        if (kind == MenuUpdate::Kind::properties) {
            ASSERT_THAT(published.changed, Not(IsEmpty()));
        }

        // A row that is still there has kept its id, and no other row has got it.
        std::map<std::string, std::int32_t> idsBefore;
        for (const auto& row : before.rows()) {
            if (!row.item || meaning(*row.item).empty()) continue;
            idsBefore[meaning(*row.item)] = row.id;
            const auto index = now.indexOf(row.id);
            if (index) {
                ASSERT_EQ(meaning(*now.rows()[*index].item), meaning(*row.item));
            }
        }
        std::set<std::int32_t> ids;
        for (const auto& row : now.rows()) {
            ids.insert(row.id);
            if (!row.item || !meaning(*row.item).starts_with("project")) continue;
            const auto known = idsBefore.find(meaning(*row.item));
            if (known != idsBefore.end()) {
                ASSERT_EQ(row.id, known->second) << meaning(*row.item);
            }
        }
        std::size_t rows = 1;
        for (const auto& item : menu.items)
            rows += 1 + (item.submenu ? item.submenu->items.size() : 0);
        ASSERT_EQ(ids.size(), rows);
        ASSERT_EQ(now.rows().size(), rows);
    }
}

} // namespace

} // namespace harbrook::tests
