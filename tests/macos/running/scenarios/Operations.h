#pragma once

#include <string>
#include <vector>

namespace harbrook::running {

/// What of `messages` is not what `operations`, the log of the double, stand for: the first difference, or
/// nothing.
[[nodiscard]] std::string difference(
    const std::vector<std::string>& operations, const std::vector<std::string>& messages);

/// How many operations were compared since the program began.
[[nodiscard]] long comparedOperations();

} // namespace harbrook::running
