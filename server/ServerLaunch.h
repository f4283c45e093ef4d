#pragma once

#include "app/Globals.h"
#include "platform/Platform.h"
#include "server/ServerSlot.h"

#include <filesystem>
#include <optional>
#include <string>

namespace harbrook {

/// The environment of the server: the shell's own, and what the contract with the server adds to it.
[[nodiscard]] Environment serverEnvironment(
    Environment environment, const std::string& apiToken, int shellProcess);

/// Starts the server and waits up to 10 seconds for its announcement; then sets the server port and the base
/// URL. What to tell the user when that failed, or none. Blocks: never on the main thread.
[[nodiscard]] std::optional<std::string> launchServer(Platform& platform, Globals& globals, ServerSlot& slot);

} // namespace harbrook
