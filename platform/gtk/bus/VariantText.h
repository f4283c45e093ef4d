#pragma once

#include <gio/gio.h>

#include <string_view>

namespace harbrook::gtk {

/// A string variant (a floating reference). What D-Bus cannot carry, a zero byte or broken UTF-8, becomes the
/// replacement character.
[[nodiscard]] GVariant* textVariant(std::string_view text);

} // namespace harbrook::gtk
