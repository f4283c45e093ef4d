#pragma once

#include <cstdint>

namespace harbrook {

/// How often the program has asked for memory by `new` so far. Linking this in replaces the global operators.
[[nodiscard]] std::int64_t allocationCount();

} // namespace harbrook
