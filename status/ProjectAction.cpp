#include "status/ProjectAction.h"

#include <nlohmann/json.hpp>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace harbrook {

namespace {

bool isAlphanumeric(UChar32 character) {
    return (U_GET_GC_MASK(character) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

void appendPercentEncoded(std::string& result, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result += {'%', digits[byte >> 4], digits[byte & 15]};
    }
}

} // namespace

std::optional<ProjectAction> projectAction(std::string_view represented) {
    // An empty piece in front of the verb is no piece.
    const auto text = represented.substr(std::min(represented.find_first_not_of('\n'), represented.size()));
    const auto verb = text.substr(0, text.find('\n'));
    const auto path = text.substr(std::min(verb.size() + 1, text.size()));
    if (verb.empty() || path.empty()) return std::nullopt;
    return ProjectAction{std::string(verb), std::string(path)};
}

std::optional<std::string> percentEncodedAlphanumeric(std::string_view text) {
    std::string encoded;
    const auto length = static_cast<std::int64_t>(text.size());
    for (std::int64_t start = 0, next = 0; start < length; start = next) {
        UChar32 character = 0;
        U8_NEXT(text.data(), next, length, character);
        if (character < 0) return std::nullopt;
        const auto bytes =
            text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(next - start));
        if (isAlphanumeric(character)) {
            encoded += bytes;
        } else {
            appendPercentEncoded(encoded, bytes);
        }
    }
    return encoded;
}

std::optional<std::string> projectRequestBody(const std::string& path) {
    try {
        return nlohmann::json{{"path", path}}.dump();
    } catch (const nlohmann::json::type_error&) {
        return std::nullopt;
    }
}

} // namespace harbrook
