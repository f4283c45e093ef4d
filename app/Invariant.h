#pragma once

#include <cstdio>
#include <cstdlib>
#include <source_location>

namespace harbrook {

/// Stops the process: something that the program itself guarantees does not hold.
[[noreturn]] inline void invariantBroken(
    const char* what, std::source_location where = std::source_location::current()) {
    std::fprintf(stderr, "%s:%u: %s\n", where.file_name(), where.line(), what);
    std::abort();
}

/// What `holder` (an optional, a pointer) holds; it must hold something.
template <typename Holder>
decltype(auto) required(Holder&& holder, std::source_location where = std::source_location::current()) {
    if (!holder) invariantBroken("a value that must exist is missing", where);
    return *std::forward<Holder>(holder);
}

} // namespace harbrook
