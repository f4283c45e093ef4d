#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"
#include "platform/gtk/status/MenuLayout.h"

#include <gio/gio.h>

#include <string>
#include <string_view>
#include <vector>

// The published menu in the words of com.canonical.dbusmenu. Any thread. The variants are floating
// references.

namespace harbrook::gtk {

/// The names of the properties that a host asks for; empty means all.
using PropertyNames = std::vector<std::string>;

/// The properties of one row that differ from their defaults, as `a{sv}`. The root's item is null.
[[nodiscard]] GVariant* menuProperties(const MenuItem* item, const PropertyNames& names);

/// What a property counts as where a row does not have it (a full reference), or null for an unknown one.
[[nodiscard]] GVariant* menuPropertyDefault(std::string_view name);

/// Label and enabled state, defaults or not, as `a{sv}`: what a host has to hear when they changed.
[[nodiscard]] GVariant* changeableMenuProperties(const MenuItem& item);

/// The properties of the rows with these ids, or of all rows when there are none, as `a(ia{sv})`. Ids without
/// a row are passed over, and so are those that come again.
[[nodiscard]] GVariant* menuPropertiesOfRows(
    const MenuLayout& layout, const std::vector<std::int32_t>& ids, const PropertyNames& names);

/// The row at `index` with `depth` levels below it (all of them when negative), as `(ia{sv}av)`.
[[nodiscard]] GVariant* menuTree(
    const MenuLayout& layout, std::size_t index, int depth, const PropertyNames& names);

} // namespace harbrook::gtk
