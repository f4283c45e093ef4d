#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace harbrook::fuzz {

/// Ends the run: what must hold for every input did not hold for this one.
inline void require(bool holds) {
    if (!holds) std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// The bytes of an input, one choice after the other; zeros when they are used up.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    [[nodiscard]] bool isEmpty() const { return next_ == end_; }
    std::uint8_t below(std::uint8_t limit) {
        return static_cast<std::uint8_t>(isEmpty() ? 0 : *next_++ % limit);
    }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

} // namespace harbrook::fuzz
