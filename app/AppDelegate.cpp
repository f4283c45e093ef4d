#include "app/AppDelegate.h"

#include "app/Invariant.h"

namespace harbrook {

namespace {

constexpr double pollInterval = 3.0;

} // namespace

AppDelegate::AppDelegate(std::shared_ptr<Platform> platform, std::shared_ptr<Globals> globals)
    : server(std::make_shared<ServerSlot>()), platform_(std::move(platform)), globals_(std::move(globals)) {}

void AppDelegate::applicationDidFinishLaunching() {
    assertMainThread();
    buildMenu();
    buildWindow();
    buildStatusItem();
    startServerIfNeeded([weak = weak_from_this()](bool ok, const std::string& message) {
        const auto self = weak.lock();
        if (!self) return;
        if (ok) {
            self->loadBaseURL();
            required(self->loadingLabel).setHidden(true);
        } else {
            required(self->loadingLabel).setStringValue(message);
        }
    });
    pollTimer = platform_->scheduledTimerWithTimeInterval(
        pollInterval, true, whileAlive(&AppDelegate::refreshStatus));
    enableScreenshotMode();
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    showWindow();
    return true;
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() {
    return false;
}

void AppDelegate::applicationWillTerminate() {
    assertMainThread();
    server->terminateAndWait();
}

void AppDelegate::assertMainThread() const {
    if (!platform_->isMainThread()) invariantBroken("called off the main thread");
}

Block AppDelegate::whileAlive(void (AppDelegate::*method)()) {
    return [weak = weak_from_this(), method] {
        if (const auto self = weak.lock()) (self.get()->*method)();
    };
}

} // namespace harbrook
