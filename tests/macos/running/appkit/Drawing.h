#pragma once

#include "tests/macos/running/foundation/Foundation.h"

namespace harbrook::running {

/// As what it is in light and in dark, if it differs.
[[nodiscard]] std::string describeColor(NSColor* color);
[[nodiscard]] std::string describeColorIn(NSColor* color, const std::string& appearanceName);
[[nodiscard]] std::string describeFont(NSFont* font);
/// Has a drawn image drawn.
void draw(NSImage* image);

} // namespace harbrook::running
