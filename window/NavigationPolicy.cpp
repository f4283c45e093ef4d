#include "window/NavigationPolicy.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace harbrook {

NavigationDecision decidePolicy(const std::optional<URL>& url, std::int64_t serverPort) {
    if (!url) return NavigationDecision::allow;
    if (url->host() == "localhost" && url->port() == serverPort) return NavigationDecision::allow;
    return hasExternalScheme(*url) ? NavigationDecision::openExternally : NavigationDecision::allow;
}

bool hasExternalScheme(const URL& url) {
    constexpr std::array<std::string_view, 3> schemes = {"http", "https", "mailto"};
    return std::ranges::find(schemes, url.scheme().value_or("")) != schemes.end();
}

} // namespace harbrook
