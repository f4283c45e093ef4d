#include "app/AppDelegate.h"
#include "status/ProjectAction.h"

namespace harbrook {

namespace {

constexpr double actionTimeout = 30.0;

} // namespace

void AppDelegate::openPort(const MenuItem& sender) {
    const auto* port = std::get_if<std::int64_t>(&sender.representedObject);
    if (!port) return;
    if (const auto url = URL::URLWithString("http://localhost:" + std::to_string(*port))) {
        platform_->sharedWorkspace().openURL(*url);
    }
}

void AppDelegate::openProject(const MenuItem& sender) {
    const auto* path = std::get_if<std::string>(&sender.representedObject);
    const auto encoded = path ? percentEncodedAlphanumeric(*path) : std::nullopt;
    if (encoded) go("#/p/" + *encoded);
}

void AppDelegate::toggleProject(const MenuItem& sender) {
    const auto* represented = std::get_if<std::string>(&sender.representedObject);
    const auto action = represented ? projectAction(*represented) : std::nullopt;
    if (!action) return;

    auto request = apiRequest("api/project/" + action->verb, actionTimeout);
    request.httpMethod = "POST";
    request.headerFields["Content-Type"] = "application/json";
    request.headerFields["X-Harbrook"] = "1";
    request.headerFields["X-Harbrook-Source"] = "menubar";
    request.httpBody = projectRequestBody(action->path);
    platform_->sharedSession()
        .dataTaskWithRequest(
            std::move(request), [platform = platform_, followUp = whileAlive(&AppDelegate::followUpToggle)](
                                    const auto& /*data*/, const auto& /*response*/,
                                    const auto& /*error*/) { platform->mainQueue().async(followUp); })
        ->resume();
}

void AppDelegate::followUpToggle() {
    refreshStatus();
    for (const double delay : {1.0, 2.5, 5.0}) {
        platform_->mainQueue().asyncAfter(delay, whileAlive(&AppDelegate::refreshStatus));
    }
}

} // namespace harbrook
