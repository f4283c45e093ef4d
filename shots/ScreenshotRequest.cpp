#include "shots/ScreenshotRequest.h"

namespace harbrook {

std::optional<ScreenshotRequest> screenshotRequest(const std::optional<Value::Dictionary>& userInfo) {
    const auto* hash = userInfo ? stringForKey(*userInfo, "hash") : nullptr;
    if (!hash) return std::nullopt;
    const auto* token = stringForKey(*userInfo, "token");
    const auto* click = stringForKey(*userInfo, "click");
    return ScreenshotRequest{*hash, token ? *token : "", click ? *click : ""};
}

} // namespace harbrook
