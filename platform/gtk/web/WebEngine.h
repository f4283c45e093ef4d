#pragma once

#include "platform/WebView.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <webkit/webkit.h>

#include <vector>

namespace harbrook::gtk {

/// A bare view of the engine with the shell's settings, the default data store and `scripts`.
[[nodiscard]] GObjectPtr<WebKitWebView> makeEngineView(const std::vector<UserScript>& scripts);

} // namespace harbrook::gtk
