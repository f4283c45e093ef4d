// Any text in the place of what the engine writes for a page's value: every text in the value is Unicode, no
// value is nested too deep, and half a surrogate pair costs nothing but itself.

#include "platform/gtk/web/ScriptJSON.h"
#include "server/Text.h"
#include "tests/fuzz/FuzzInput.h"

#include <algorithm>
#include <string>

namespace {

using namespace harbrook;

constexpr int deepest = 256;

void check(const Value& value, int depth) {
    fuzz::require(depth <= deepest);
    if (const auto* text = value.as<std::string>()) fuzz::require(isValidUTF8(*text));
    if (const auto* array = value.as<Value::Array>()) {
        for (const auto& element : *array)
            check(element, depth + 1);
    }
    if (const auto* dictionary = value.as<Value::Dictionary>()) {
        for (const auto& [key, element] : *dictionary) {
            fuzz::require(isValidUTF8(key));
            check(element, depth + 1);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(fuzz::textOf(data, size));
    if (const auto value = gtk::valueFromScriptJSON(text)) check(*value, 0);

    // As the contents of one text: letters and digits alone cannot end it, so it is always a value.
    std::string escape = text;
    std::erase_if(escape, [](char c) { return !((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')); });
    if (escape.size() < 4) return 0;
    const auto half = gtk::valueFromScriptJSON("[\"\\ud" + escape.substr(0, 3) + "!\"]");
    fuzz::require(half.has_value());
    const auto* array = half->as<Value::Array>();
    fuzz::require(array && array->size() == 1 && array->front().as<std::string>()->ends_with('!'));
    return 0;
}
