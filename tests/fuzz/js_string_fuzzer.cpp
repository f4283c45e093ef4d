// Any text in a script: the literal means the text again, and cannot end before its end.

#include "server/Text.h"
#include "tests/fuzz/FuzzInput.h"
#include "window/JSString.h"

#include <nlohmann/json.hpp>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbrook;
    const std::string text(fuzz::textOf(data, size));
    const auto literal = jsString(text);
    const auto meaning = nlohmann::json::parse(literal, nullptr, false);
    fuzz::require(meaning.is_string());
    const auto meant = meaning.get<std::string>();
    fuzz::require(meant == (isValidUTF8(text) ? text : ""));
    fuzz::require(literal.find("</") == std::string::npos && literal.find('\n') == std::string::npos);
    return 0;
}
