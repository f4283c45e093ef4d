#pragma once

#include "tests/macos/running/foundation/Foundation.h"

namespace harbrook::running {

/// The user opens the menu of the status item; it stays as it is until it is opened again.
[[nodiscard]] NSMenu* openStatusMenu();
[[nodiscard]] NSStatusItem* theStatusItem();

} // namespace harbrook::running
