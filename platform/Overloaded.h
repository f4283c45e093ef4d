#pragma once

namespace harbrook {

/// Functions for the alternatives of a variant as one, for `std::visit`.
template <typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
// Compilers that know C++20 only in part need to be told.
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace harbrook
