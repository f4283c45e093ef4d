#include "app/AppDelegate.h"

namespace harbrook {

namespace {

constexpr double stateTimeout = 10.0;

} // namespace

void AppDelegate::refreshStatus() {
    assertMainThread();
    platform_->sharedSession()
        .dataTaskWithRequest(
            apiRequest("api/state", stateTimeout),
            [weak = weak_from_this(), platform = platform_](
                const std::optional<std::string>& data, const auto& /*response*/, const auto& /*error*/) {
                // Whatever the status says: a body that is a snapshot is one.
                auto state = data ? decodeState(*data) : std::nullopt;
                platform->mainQueue().async([weak, state = std::move(state)] {
                    if (const auto self = weak.lock()) self->renderStatus(state);
                });
            })
        ->resume();
}

} // namespace harbrook
