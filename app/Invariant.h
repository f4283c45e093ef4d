#pragma once

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace harbrook {

/// Stops the process: something that the program itself guarantees does not hold. File and line are the
/// caller's.
[[noreturn]] inline void invariantBroken(
    const char* what, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    std::fprintf(stderr, "%s:%d: %s\n", file, line, what);
    std::abort();
}

/// What `holder` (an optional, a pointer) holds; it must hold something.
template <typename Holder>
decltype(auto) required(Holder&& holder, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (!holder) invariantBroken("a value that must exist is missing", file, line);
    return *std::forward<Holder>(holder);
}

} // namespace harbrook
