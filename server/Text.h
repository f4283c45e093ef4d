#pragma once

#include <string_view>

namespace harbrook {

/// Whether `text` is well-formed UTF-8 from its first byte to its last (Unicode, table 3-7).
[[nodiscard]] bool isValidUTF8(std::string_view text);

/// `text`, which is valid UTF-8, without Unicode white space and newlines at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace harbrook
