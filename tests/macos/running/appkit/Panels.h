#pragma once

#include "tests/macos/running/foundation/Foundation.h"

#include <optional>

// Sheets, which wait for the user. The window keeps them until they are answered.

namespace harbrook::running {

/// The user ends the oldest sheet; a folder panel's `choice` goes first.
void endSheet(long response, const std::optional<std::string>& choice = {});
[[nodiscard]] int openSheets();
void forgetSheets();

} // namespace harbrook::running
