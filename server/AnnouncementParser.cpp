#include "server/AnnouncementParser.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace harbrook {

namespace {

constexpr std::string_view marker = "HARBROOK_PORT ";

} // namespace

std::optional<std::int64_t> AnnouncementParser::append(std::string_view text) {
    if (markerFound_) {
        appendToRun(text);
    } else {
        tail_ += text;
        if (const auto position = tail_.find(marker); position != std::string::npos) {
            markerFound_ = true;
            appendToRun(std::string_view(tail_).substr(position + marker.size()));
            tail_ = {};
        } else if (tail_.size() >= marker.size()) {
            tail_.erase(0, tail_.size() - (marker.size() - 1));
        }
    }
    return runIsNumber_ ? number_ : std::nullopt;
}

void AnnouncementParser::appendToRun(std::string_view text) {
    std::int64_t i = 0;
    const auto length = static_cast<std::int64_t>(text.size());
    while (!runEnded_ && i < length) {
        UChar32 character = 0;
        U8_NEXT(text.data(), i, length, character);
        if (character >= '0' && character <= '9') {
            std::int64_t next = number_.value_or(0);
            const bool overflows = __builtin_mul_overflow(next, std::int64_t{10}, &next) ||
                                   __builtin_add_overflow(next, std::int64_t{character - '0'}, &next);
            if (overflows) runIsNumber_ = false;
            number_ = next;
        } else if (character >= 0 && u_getNumericValue(character) != U_NO_NUMERIC_VALUE) {
            // Numeric, but not a decimal digit that a port is written with: the run goes on, and is no
            // number.
            runIsNumber_ = false;
        } else {
            runEnded_ = true;
        }
    }
}

} // namespace harbrook
