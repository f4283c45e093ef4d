#pragma once

#include "platform/gtk/foundation/SignalConnections.h"

#include <webkit/webkit.h>

namespace harbrook::gtk {

/// Refuses, in `view`, everything a page may ask of the machine or of the user beyond being shown: location,
/// notifications, camera, microphone, the pointer, device names, the clipboard, passwords, files, colours,
/// printing. Without an answer the engine would show dialogs of its own for some of these.
void refuseRequests(SignalConnections& connections, WebKitWebView* view);

} // namespace harbrook::gtk
