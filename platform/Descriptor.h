#pragma once

#include <string>

namespace harbrook {

/// What can be read from `descriptor` now; blocks while there is nothing. Empty at end of file, and also when
/// it cannot be read. Any thread.
[[nodiscard]] std::string readAvailable(int descriptor);

} // namespace harbrook
