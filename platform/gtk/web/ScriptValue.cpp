#include "platform/gtk/web/ScriptValue.h"

#include "platform/gtk/foundation/GObjectPtr.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

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
void replaceLoneSurrogates(char* text) {
    for (; *text; ++text) {
        if (*text != '\\') continue;
        ++text;
        const bool surrogate = text[0] == 'u' && text[1] == 'd' && text[2] >= '8';
        if (surrogate) std::copy_n("fffd", 4, text + 1);
    }
}

std::optional<Value> compositeFromScript(JSCValue* value) {
    const GCharPtr text(jsc_value_to_json(value, 0));
    if (!text) {
        // The failed conversion leaves its exception behind, which would be taken for one of a later call.
        jsc_context_clear_exception(jsc_value_get_context(value));
        return std::nullopt;
    }
    replaceLoneSurrogates(text.get());
    bool tooDeep = false;
    const auto watchDepth = [&](int depth, json::parse_event_t, json&) {
        tooDeep = tooDeep || depth > deepest;
        return !tooDeep;
    };
    const auto parsed = json::parse(text.get(), watchDepth, false);
    if (tooDeep || parsed.is_discarded()) return std::nullopt;
    return valueFromJSON(parsed);
}

} // namespace

std::optional<Value> valueFromScript(JSCValue* value) {
    if (jsc_value_is_undefined(value) || jsc_value_is_function(value)) return std::nullopt;
    if (jsc_value_is_null(value)) return Value();
    if (jsc_value_is_boolean(value)) return Value(jsc_value_to_boolean(value) == TRUE);
    if (jsc_value_is_number(value)) return Value(jsc_value_to_double(value));
    if (jsc_value_is_string(value)) {
        const GBytesPtr text(jsc_value_to_string_as_bytes(value));
        gsize length = 0;
        const auto* bytes = static_cast<const char*>(g_bytes_get_data(text.get(), &length));
        return Value(std::string(bytes, length));
    }
    return compositeFromScript(value);
}

} // namespace harbrook::gtk
