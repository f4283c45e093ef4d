#pragma once

#include "tests/macos/running/runtime/Layout.h"

namespace harbrook::running {

/// Checks a message of the program's against its declaration, and notes it. `answeredBy` is the class that
/// has a method for it, or null.
void noteMessage(const MessageFrame& frame, bool isLarge, Class answeredBy);
/// Notes that the platform calls a delegate of the program's.
void noteCallback(id receiver, const objc_selector& selector, Class answeredBy);
/// Answers a message that has no method of its own: a setter keeps its value, a getter gives it back, and
/// what is never nil is an object of its class.
void answerMessage(MessageFrame& frame, bool isLarge);

} // namespace harbrook::running
