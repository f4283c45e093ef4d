#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <gio/gio.h>

#include <functional>
#include <string>

namespace harbrook::gtk {

/// Answers a call; `value` is a tuple (a floating one is consumed) or null for none. Any thread.
void returnValue(GObjectPtr<GDBusMethodInvocation> invocation, GVariant* value = nullptr);
/// Answers a call with an error that says what was wrong with its arguments. Any thread.
void returnInvalidArguments(GObjectPtr<GDBusMethodInvocation> invocation, const std::string& message);
/// Answers a call later with what `makeValue` returns, for answers that take long to put together.
/// `makeValue` runs on a worker thread, so it may only use what no other thread changes.
void returnValueFromWorker(
    GObjectPtr<GDBusMethodInvocation> invocation, std::function<GVariant*()> makeValue);

} // namespace harbrook::gtk
