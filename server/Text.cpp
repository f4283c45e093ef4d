#include "server/Text.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <cstring>

namespace harbrook {

namespace {

/// The index of the first byte from `start` on that is not ASCII; or, from fewer than eight bytes before the
/// end on, an index up to which all is ASCII.
std::size_t skipASCII(std::string_view text, std::size_t start) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    while (text.size() - start >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + start, sizeof word);
        if (word & highBits) break;
        start += sizeof word;
    }
    return start;
}

} // namespace

bool isValidUTF8(std::string_view text) {
    const auto* bytes = text.data();
    const auto length = static_cast<std::int64_t>(text.size());
    std::int64_t i = 0;
    while (i < length) {
        i = static_cast<std::int64_t>(skipASCII(text, static_cast<std::size_t>(i)));
        if (i == length) break;
        UChar32 character = 0;
        U8_NEXT(bytes, i, length, character);
        if (character < 0) return false;
    }
    return true;
}

std::string_view trimmed(std::string_view text) {
    const auto* bytes = text.data();
    const auto length = static_cast<std::int32_t>(text.size());
    std::int32_t start = 0;
    std::int32_t end = length;
    UChar32 character = 0;
    for (std::int32_t next = 0; next < length; start = next) {
        U8_NEXT(bytes, next, length, character);
        if (!u_isUWhiteSpace(character)) break;
    }
    for (std::int32_t previous = end; previous > start; end = previous) {
        U8_PREV(bytes, start, previous, character);
        if (!u_isUWhiteSpace(character)) break;
    }
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

} // namespace harbrook
