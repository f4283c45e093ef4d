// Any value that a page or another program can send, as a message and as a screenshot request: each is taken
// only in its stated shape.

#include "shots/ScreenshotRequest.h"
#include "status/ProjectAction.h"
#include "tests/fuzz/FuzzInput.h"
#include "window/PageMessage.h"

#include <string>

namespace {

using namespace harbrook;

Value valueFrom(fuzz::Choices& choices, int depth);

std::string textFrom(fuzz::Choices& choices) {
    constexpr const char* words[] = {"k",    "v",     "hash",  "token", "click",  "drag", "zoom",
                                     "quit", "title", "state", "",      "stop\n", "\n",   "pickFolder"};
    std::string text = words[choices.below(std::size(words))];
    for (auto rest = choices.below(4); rest > 0; --rest)
        text += static_cast<char>(choices.below(255));
    return text;
}

Value::Dictionary dictionaryFrom(fuzz::Choices& choices, int depth) {
    Value::Dictionary dictionary;
    for (auto count = choices.below(5); count > 0; --count) {
        auto key = textFrom(choices);
        dictionary.insert_or_assign(std::move(key), valueFrom(choices, depth + 1));
    }
    return dictionary;
}

Value valueFrom(fuzz::Choices& choices, int depth) {
    constexpr int deepest = 8;
    switch (choices.below(depth < deepest ? 6 : 4)) {
    case 0:
        return {};
    case 1:
        return choices.below(2) == 1;
    case 2:
        return static_cast<double>(choices.below(255));
    case 3:
        return textFrom(choices);
    case 4: {
        Value::Array array;
        for (auto count = choices.below(4); count > 0; --count)
            array.push_back(valueFrom(choices, depth + 1));
        return array;
    }
    default:
        return dictionaryFrom(choices, depth);
    }
}

void checkMessage(const Value& body) {
    const auto message = pageMessage(body);
    const auto* dictionary = body.as<Value::Dictionary>();
    fuzz::require(!message || dictionary || body.as<std::string>());
    if (!message) return;
    fuzz::require(!dictionary || stringForKey(*dictionary, "k"));
    fuzz::require(dictionary || message->argument.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Choices choices(data, size);
    checkMessage(valueFrom(choices, 0));

    const auto userInfo = dictionaryFrom(choices, 0);
    fuzz::require(screenshotRequest(userInfo).has_value() == (stringForKey(userInfo, "hash") != nullptr));

    const auto text = fuzz::textOf(data, size);
    if (const auto action = projectAction(text)) {
        const auto whole = action->verb + "\n" + action->path;
        fuzz::require(!action->verb.empty() && !action->path.empty() && text.ends_with(whole));
        fuzz::require(text.substr(0, text.size() - whole.size()).find_first_not_of('\n') == text.npos);
    }
    if (const auto encoded = percentEncodedAlphanumeric(text)) {
        for (const char c : *encoded)
            fuzz::require(c == '%' || !(c >= 0 && c < '0'));
    }
    return 0;
}
