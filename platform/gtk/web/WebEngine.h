#pragma once

#include "platform/WebView.h"
#include "platform/gtk/foundation/GObjectPtr.h"

#include <webkit/webkit.h>

#include <vector>

namespace harbrook::gtk {

/// A bare view of the engine with the shell's settings, the default data store and, for the pages of local
/// servers, `scripts`. Nothing can be dropped on it, and the user can zoom it.
[[nodiscard]] GObjectPtr<WebKitWebView> makeEngineView(const std::vector<UserScript>& scripts);

} // namespace harbrook::gtk
