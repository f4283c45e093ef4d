#pragma once

#include "platform/Platform.h"

#include <optional>
#include <string>

namespace harbrook {

/// The absolute path of an executable Node.js interpreter, or none: the one among the application's
/// resources, the one that the user's login shell resolves, or the one in a conventional place, in that
/// order. Blocks while the login shell reads the user's profile, without limit: never on the main thread.
[[nodiscard]] std::optional<std::string> findNode(Platform& platform);

} // namespace harbrook
