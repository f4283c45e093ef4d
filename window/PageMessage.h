#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>

namespace harbrook {

/// What a page asks of the shell.
struct PageMessage {
    enum class Kind { drag, zoom, quit, title, pickFolder, state };

    Kind kind;
    std::string argument;

    bool operator==(const PageMessage&) const = default;
};

/// The meaning of a message's body: a bare string ("drag", "zoom", "quit"), or a dictionary with the kind
/// under "k" and an argument under "v". None for anything else.
[[nodiscard]] std::optional<PageMessage> pageMessage(const Value& body);

} // namespace harbrook
