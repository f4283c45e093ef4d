#pragma once

#include "platform/Platform.h"

#include <memory>

namespace harbrook {

/// The whole program on one platform: makes the globals, the application and its delegate, and runs the event
/// loop. Returns the exit status once the loop ends.
int runShell(const std::shared_ptr<Platform>& platform);

} // namespace harbrook
