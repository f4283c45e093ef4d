#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>

namespace harbrook::gtk {

/// The value that the engine has written as JSON; none for what is nested so deep that only an attack would
/// have it, or is no JSON. Half a surrogate pair becomes the replacement character.
[[nodiscard]] std::optional<Value> valueFromScriptJSON(std::string text);

} // namespace harbrook::gtk
