#pragma once

#include "platform/Color.h"
#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/Notifications.h"
#include "platform/Text.h"
#include "platform/Value.h"

#include <string>
#include <string_view>

namespace harbrook::recording {

// How arguments are written in the operation log.

/// In double quotes; line feeds, quotes and backslashes escaped.
[[nodiscard]] std::string inQuotes(std::string_view text);
/// As short as it can be written: `52`, `0.5`.
[[nodiscard]] std::string format(double number);
[[nodiscard]] std::string format(bool flag);
[[nodiscard]] std::string format(Point point);
[[nodiscard]] std::string format(Size size);
[[nodiscard]] std::string format(Rect rect);
/// A dynamic colour is written as what it is in light and in dark.
[[nodiscard]] std::string format(const Color& color);
[[nodiscard]] std::string format(Font font);
[[nodiscard]] std::string format(const Image& image);
[[nodiscard]] std::string format(NotificationName name);

} // namespace harbrook::recording
