#pragma once

#include "platform/Menu.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace harbrook::gtk {

/// Hands out the ids of menu rows: small positive numbers (some hosts cannot take large ones), each as late
/// as possible for a second time, so that a host with an old menu never clicks a row with a new meaning.
class MenuIds {
public:
    /// Ids stay below this for as long as fewer rows than that exist at a time.
    static constexpr std::int32_t limit = 30000;

    [[nodiscard]] std::int32_t take();
    /// Gives back the id of a row that has gone.
    void retire(std::int32_t id);

private:
    std::int32_t next_ = 1;
    std::deque<std::int32_t> retired_;
};

/// A menu as it is published: its rows in reading order, each with an id. An immutable value that shares its
/// menu between copies; any thread may read it.
class MenuLayout {
public:
    struct Row {
        std::int32_t id = 0;
        /// Null for the root, which stands for the whole menu and has the id 0.
        const MenuItem* item = nullptr;
        /// Index of the first row that is not below this one. The rows below directly follow it.
        std::size_t end = 1;
    };

    /// An empty menu.
    MenuLayout() = default;

    [[nodiscard]] const Menu& menu() const { return *menu_; }
    /// Never empty: the first one is the root.
    [[nodiscard]] const std::vector<Row>& rows() const { return rows_; }
    /// Index of the row with this id.
    [[nodiscard]] std::optional<std::size_t> indexOf(std::int32_t id) const;
    /// Indices of the rows directly below the row at `index`.
    [[nodiscard]] std::vector<std::size_t> childrenOf(std::size_t index) const;

private:
    friend class MenuUpdater;

    std::shared_ptr<const Menu> menu_ = std::make_shared<const Menu>();
    std::vector<Row> rows_ = {Row{}};
    /// Index of each id's row; 0 where there is none.
    std::vector<std::uint32_t> indexById_;
};

/// What a host has to hear when one layout takes the place of another.
struct MenuUpdate {
    enum class Kind {
        nothing,
        /// The same rows in the same order, some of them changed.
        properties,
        /// Rows came, went or moved.
        layout,
    };

    Kind kind = Kind::nothing;
    MenuLayout layout;
    /// Rows of both layouts that have another label or enabled state.
    std::vector<std::int32_t> changed;
};

/// The layout of `menu` as the successor of `published`, in near-linear time. A row keeps its id for as long
/// as it means the same: an action with its represented object, a submenu that still offers one of its
/// choices, a line of text in its place. Ids for new rows are taken from `ids`; those of gone rows retired.
[[nodiscard]] MenuUpdate updatedLayout(const MenuLayout& published, const Menu& menu, MenuIds& ids);

} // namespace harbrook::gtk
