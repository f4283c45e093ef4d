#pragma once

#include "platform/Menu.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace harbrook::gtk {

/// For each item of `now`, the index in `before` (siblings too) of the row that it continues, or none for a
/// new row. No row is continued twice. Near-linear in the number of rows and of their children.
[[nodiscard]] std::vector<std::optional<std::size_t>> matchRows(
    const std::vector<const MenuItem*>& before, const std::vector<MenuItem>& now);

} // namespace harbrook::gtk
