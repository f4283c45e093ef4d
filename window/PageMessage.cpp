#include "window/PageMessage.h"

namespace harbrook {

namespace {

using Kind = PageMessage::Kind;

std::optional<Kind> windowCommand(const std::string& name) {
    if (name == "drag") return Kind::drag;
    if (name == "zoom") return Kind::zoom;
    if (name == "quit") return Kind::quit;
    return std::nullopt;
}

std::optional<Kind> dictionaryKind(const std::string& name) {
    if (name == "title") return Kind::title;
    if (name == "pickFolder") return Kind::pickFolder;
    if (name == "state") return Kind::state;
    return std::nullopt;
}

} // namespace

std::optional<PageMessage> pageMessage(const Value& body) {
    if (const auto* name = body.as<std::string>()) {
        const auto kind = windowCommand(*name);
        return kind ? std::optional(PageMessage{*kind, {}}) : std::nullopt;
    }
    const auto* dictionary = body.as<Value::Dictionary>();
    const auto* name = dictionary ? stringForKey(*dictionary, "k") : nullptr;
    const auto kind = name ? dictionaryKind(*name) : std::nullopt;
    if (!kind) return std::nullopt;
    const auto* argument = stringForKey(*dictionary, "v");
    return PageMessage{*kind, argument ? *argument : std::string()};
}

} // namespace harbrook
