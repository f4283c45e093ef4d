#pragma once

#include "platform/gtk/foundation/ChildProcess.h"

namespace harbrook::gtk {

/// Starts a program. The child has no open file beyond its three streams, no signal blocked and every
/// signal's default action. Its process identifier, or why it could not be started, in words. Any thread.
[[nodiscard]] std::variant<pid_t, Error> spawn(const LaunchPlan& plan);

} // namespace harbrook::gtk
