#pragma once

#include "platform/Value.h"

#include <gio/gio.h>

namespace harbrook::gtk {

/// What arrived over a bus as a value: strings, booleans, numbers (as doubles), arrays and tuples as arrays,
/// dictionaries with string keys; a variant counts as what it holds, anything else as null.
[[nodiscard]] Value valueFromVariant(GVariant* variant);

} // namespace harbrook::gtk
