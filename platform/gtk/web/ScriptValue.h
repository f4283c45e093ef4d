#pragma once

#include "platform/Value.h"

#include <jsc/jsc.h>

#include <optional>

namespace harbrook::gtk {

/// A page's value as the shell's own. None for what has no such form: `undefined`, functions, values that
/// refer to themselves, and nesting so deep that only an attack would have it. Inside an array or an object
/// the rules of JSON hold (a number that is not finite becomes null).
[[nodiscard]] std::optional<Value> valueFromScript(JSCValue* value);

} // namespace harbrook::gtk
