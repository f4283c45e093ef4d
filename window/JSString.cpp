#include "window/JSString.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace harbrook {

namespace {

/// A one-element JSON array that holds `text`, with "/" escaped; none when `text` is not UTF-8.
std::optional<std::string> jsonArray(std::string_view text) {
    std::string json;
    try {
        json = nlohmann::json::array({text}).dump();
    } catch (const nlohmann::json::type_error&) {
        return std::nullopt;
    }
    // No escape of the writer's contains a slash, so each one stands for itself.
    for (auto slash = json.find('/'); slash != std::string::npos; slash = json.find('/', slash + 2)) {
        json.insert(slash, 1, '\\');
    }
    return json;
}

} // namespace

std::string jsString(std::string_view text) {
    const auto array = jsonArray(text).value_or(R"([""])");
    return array.substr(1, array.size() - 2);
}

} // namespace harbrook
