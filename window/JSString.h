#pragma once

#include <string>
#include <string_view>

namespace harbrook {

/// `text` as a script string literal in double quotes, which is a JSON string too. Text that is not UTF-8
/// gives the literal of the empty string.
[[nodiscard]] std::string jsString(std::string_view text);

} // namespace harbrook
