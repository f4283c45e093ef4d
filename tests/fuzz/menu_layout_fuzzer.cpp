// Any sequence of menus: each layout is its menu, ids are unique, and no row takes over another row's id.

#include "platform/gtk/status/MenuLayout.h"
#include "tests/fuzz/FuzzInput.h"

#include <set>
#include <string>

namespace {

using namespace harbrook;

MenuItem anyItem(fuzz::Choices& choices, int depth) {
    if (choices.below(5) == 0) return MenuItem::separatorItem();
    MenuItem item;
    item.title = std::string(1, static_cast<char>('a' + choices.below(4)));
    const auto kind = choices.below(4);
    if (kind == 0 && depth < 3) {
        item.submenu.emplace();
        for (auto count = choices.below(5); count > 0; --count) {
            item.submenu->addItem(anyItem(choices, depth + 1));
        }
    } else if (kind != 1) {
        item.action = choices.below(2) == 0 ? "open:" : "stop:";
        if (choices.below(2) == 0)
            item.representedObject = std::string(1, static_cast<char>('0' + choices.below(4)));
    }
    return item;
}

bool isActionWithObject(const MenuItem& item) {
    return !item.submenu && !item.action.empty() && item.representedObject.index() != 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Choices choices(data, size);
    gtk::MenuIds ids;
    gtk::MenuLayout layout;
    while (!choices.isEmpty()) {
        Menu menu;
        for (auto count = choices.below(8); count > 0; --count)
            menu.addItem(anyItem(choices, 0));
        const auto before = layout;
        auto update = gtk::updatedLayout(before, menu, ids);
        layout = std::move(update.layout);

        fuzz::require(layout.menu() == menu);
        fuzz::require(
            (update.kind == gtk::MenuUpdate::Kind::properties) ==
            (update.kind != gtk::MenuUpdate::Kind::layout && !update.changed.empty()));
        if (before.menu() == menu) fuzz::require(update.kind == gtk::MenuUpdate::Kind::nothing);
        std::set<std::int32_t> seen;
        for (const auto& row : layout.rows()) {
            fuzz::require(seen.insert(row.id).second);
            const auto index = before.indexOf(row.id);
            if (!row.item || !index) continue;
            // The same choice still.
            const auto& previous = *before.rows()[*index].item;
            if (isActionWithObject(*row.item) && isActionWithObject(previous)) {
                fuzz::require(previous.action == row.item->action);
                fuzz::require(previous.representedObject == row.item->representedObject);
            }
        }
    }
    return 0;
}
