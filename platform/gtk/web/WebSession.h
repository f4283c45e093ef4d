#pragma once

#include "platform/gtk/foundation/GObjectPtr.h"

#include <webkit/webkit.h>

namespace harbrook::gtk {

/// The persistent storage of the pages (cookies, local storage, cache) in the user's data and cache
/// directories, and the way to the network: direct, without any proxy, because what a page of the local
/// server is sent carries the token. Certificate errors fail the load; no password is remembered.
[[nodiscard]] GObjectPtr<WebKitNetworkSession> makeDefaultSession();

} // namespace harbrook::gtk
