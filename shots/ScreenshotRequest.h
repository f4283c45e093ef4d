#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>

namespace harbrook {

/// What an outside script asks for: a view, perhaps a click, and a token to be told when it is done.
struct ScreenshotRequest {
    /// The page view, given to `go` as it is.
    std::string hash;
    /// Written to "shot-ready" when the request is done.
    std::string token;
    /// A CSS selector of the element to click once the page is ready, or empty.
    std::string click;

    bool operator==(const ScreenshotRequest&) const = default;
};

/// The request in a notification's user information; none without a hash. Values that are not strings count
/// as missing.
[[nodiscard]] std::optional<ScreenshotRequest> screenshotRequest(
    const std::optional<Value::Dictionary>& userInfo);

} // namespace harbrook
