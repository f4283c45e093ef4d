#pragma once

#include "tests/macos/running/foundation/Foundation.h"

namespace harbrook::running {

/// Sends an action to an object that has no method of that name, the way the runtime does: it asks for the
/// signature, packs the message, and has it forwarded.
void forwardAction(id receiver, SEL selector, id sender);

} // namespace harbrook::running
