#pragma once

#include "platform/Platform.h"

#include <functional>
#include <optional>
#include <string>

namespace harbrook::tests {

#if defined(__SANITIZE_THREAD__)
inline constexpr bool underThreadSanitizer = true;
#else
inline constexpr bool underThreadSanitizer = false;
#endif
/// Why some tests are left out there: what they try runs on one thread of ours, and on several of GLib's.
inline constexpr auto threadsOfTheToolkit =
    "GLib's own threads share memory under locks that the thread sanitizer does not know";

/// The platform of this process, in real time; there is only ever one.
[[nodiscard]] Platform& gtkPlatform();

/// Gives this process a display of its own, once. Why windows and views are not possible, or none.
[[nodiscard]] std::optional<std::string> provideDisplay();

/// Seconds on the clock that the platform's delays are measured on.
[[nodiscard]] double monotonicSeconds();

/// Runs the main loop until `condition` holds; whether it came to hold within `seconds`.
[[nodiscard]] bool runMainLoopUntil(const std::function<bool()>& condition, double seconds = 30);

} // namespace harbrook::tests
