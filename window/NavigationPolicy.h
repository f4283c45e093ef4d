#pragma once

#include "platform/URL.h"

#include <cstdint>
#include <optional>

namespace harbrook {

/// What becomes of a navigation.
enum class NavigationDecision {
    /// It goes on in the view.
    allow,
    /// It is cancelled, and its URL goes to the default browser or mail program.
    openExternally,
};

/// Decides on a navigation to `url` while the server listens on `serverPort`. Only the host name "localhost"
/// with that very port is the server; an address such as 127.0.0.1 is not.
[[nodiscard]] NavigationDecision decidePolicy(const std::optional<URL>& url, std::int64_t serverPort);

/// Whether `url` has a scheme that the default browser or mail program takes: http, https or mailto.
[[nodiscard]] bool hasExternalScheme(const URL& url);

} // namespace harbrook
