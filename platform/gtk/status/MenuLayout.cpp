#include "platform/gtk/status/MenuLayout.h"

#include "platform/gtk/status/MenuMatch.h"

#include <algorithm>

namespace harbrook::gtk {

std::int32_t MenuIds::take() {
    if (next_ >= limit && !retired_.empty()) {
        const auto id = retired_.front();
        retired_.pop_front();
        return id;
    }
    return next_++;
}

void MenuIds::retire(std::int32_t id) {
    if (id < limit) retired_.push_back(id);
}

std::optional<std::size_t> MenuLayout::indexOf(std::int32_t id) const {
    if (id == 0) return 0;
    const auto known = id > 0 && static_cast<std::size_t>(id) < indexById_.size();
    const std::size_t index = known ? indexById_[static_cast<std::size_t>(id)] : 0;
    return index == 0 ? std::nullopt : std::optional(index);
}

std::vector<std::size_t> MenuLayout::childrenOf(std::size_t index) const {
    std::vector<std::size_t> children;
    for (auto child = index + 1; child < rows_[index].end; child = rows_[child].end) {
        children.push_back(child);
    }
    return children;
}

/// Builds the successor of a layout row by row.
class MenuUpdater {
public:
    MenuUpdater(const MenuLayout& published, MenuIds& ids) : published_(published), ids_(ids) {}

    MenuUpdate run(const Menu& menu) {
        auto& layout = update_.layout;
        layout.menu_ = std::make_shared<const Menu>(menu);
        layout.rows_.reserve(published_.rows().size());
        addChildren(0, layout.menu_->items);
        layout.rows_.front().end = layout.rows_.size();
        indexRows();
        if (structureChanged_) retireRows();
        update_.kind = structureChanged_         ? MenuUpdate::Kind::layout
                       : update_.changed.empty() ? MenuUpdate::Kind::nothing
                                                 : MenuUpdate::Kind::properties;
        return std::move(update_);
    }

private:
    void addChildren(std::optional<std::size_t> publishedParent, const std::vector<MenuItem>& items) {
        const auto before =
            publishedParent ? published_.childrenOf(*publishedParent) : std::vector<std::size_t>();
        std::vector<const MenuItem*> publishedItems;
        publishedItems.reserve(before.size());
        for (const auto index : before)
            publishedItems.push_back(published_.rows()[index].item);

        const auto matches = matchRows(publishedItems, items);
        if (before.size() != items.size()) structureChanged_ = true;
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (matches[i] != i) structureChanged_ = true;
            add(items[i], matches[i] ? std::optional(before[*matches[i]]) : std::nullopt);
        }
    }

    void add(const MenuItem& item, std::optional<std::size_t> published) {
        auto& rows = update_.layout.rows_;
        const auto index = rows.size();
        rows.push_back({published ? published_.rows()[*published].id : ids_.take(), &item, index + 1});
        if (published) compare(*published_.rows()[*published].item, rows[index]);
        if (!item.submenu) return;
        addChildren(published, item.submenu->items);
        rows[index].end = rows.size();
    }

    void compare(const MenuItem& before, const MenuLayout::Row& row) {
        const auto& now = *row.item;
        // Hosts follow these two in place; few of them any other property.
        if (before.title != now.title || before.isEnabled() != now.isEnabled()) {
            update_.changed.push_back(row.id);
        }
        if (before.keyEquivalent != now.keyEquivalent ||
            before.keyEquivalentModifierMask != now.keyEquivalentModifierMask) {
            structureChanged_ = true;
        }
    }

    void indexRows() {
        auto& layout = update_.layout;
        std::int32_t highest = 0;
        for (const auto& row : layout.rows_)
            highest = std::max(highest, row.id);
        layout.indexById_.assign(static_cast<std::size_t>(highest) + 1, 0);
        for (std::size_t i = 1; i < layout.rows_.size(); ++i) {
            layout.indexById_[static_cast<std::size_t>(layout.rows_[i].id)] = static_cast<std::uint32_t>(i);
        }
    }

    void retireRows() {
        for (const auto& row : published_.rows()) {
            if (!update_.layout.indexOf(row.id)) ids_.retire(row.id);
        }
    }

    const MenuLayout& published_;
    MenuIds& ids_;
    MenuUpdate update_;
    bool structureChanged_ = false;
};

MenuUpdate updatedLayout(const MenuLayout& published, const Menu& menu, MenuIds& ids) {
    return MenuUpdater(published, ids).run(menu);
}

} // namespace harbrook::gtk
