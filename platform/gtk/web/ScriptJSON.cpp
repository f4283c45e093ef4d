#include "platform/gtk/web/ScriptJSON.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <utility>

namespace harbrook::gtk {

namespace {

using nlohmann::json;

constexpr int deepest = 256;

Value valueFromJSON(const json& node) {
    switch (node.type()) {
    case json::value_t::boolean:
        return node.get<bool>();
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
    case json::value_t::number_float:
        return node.get<double>();
    case json::value_t::string:
        return node.get<std::string>();
    case json::value_t::array: {
        Value::Array array;
        array.reserve(node.size());
        for (const auto& element : node)
            array.push_back(valueFromJSON(element));
        return array;
    }
    case json::value_t::object: {
        Value::Dictionary dictionary;
        for (const auto& [key, element] : node.items())
            dictionary.emplace(key, valueFromJSON(element));
        return dictionary;
    }
    default:
        return {};
    }
}

/// Half a surrogate pair, as a page gets when it cuts a text inside an emoji, is written as an escape and is
/// no Unicode text. It becomes the replacement character. (Whole pairs are never escaped.)
void replaceLoneSurrogates(std::string& text) {
    constexpr std::size_t escape = 6;
    for (auto at = text.find('\\'); at != std::string::npos; at = text.find('\\', at + 2)) {
        const bool surrogate =
            at + escape <= text.size() && text[at + 1] == 'u' && text[at + 2] == 'd' && text[at + 3] >= '8';
        if (surrogate) text.replace(at, escape, "\\ufffd");
    }
}

} // namespace

std::optional<Value> valueFromScriptJSON(std::string text) {
    replaceLoneSurrogates(text);
    bool tooDeep = false;
    const auto watchDepth = [&](int depth, json::parse_event_t, json&) {
        tooDeep = tooDeep || depth > deepest;
        return !tooDeep;
    };
    const auto parsed = json::parse(text, watchDepth, false);
    if (tooDeep || parsed.is_discarded()) return std::nullopt;
    return valueFromJSON(parsed);
}

} // namespace harbrook::gtk
