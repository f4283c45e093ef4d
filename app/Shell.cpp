#include "app/Shell.h"

#include "app/AppDelegate.h"
#include "app/Globals.h"

namespace harbrook {

int runShell(const std::shared_ptr<Platform>& platform) {
    const auto globals = std::make_shared<Globals>(*platform);
    auto& app = platform->sharedApplication();
    // Pictures are asked of this very start, with its own data directory and server.
    if (screenshotModeIsOn(platform->processInfo().environment())) app.setCreatesNewApplicationInstance(true);
    const auto delegate = std::make_shared<AppDelegate>(platform, globals);
    app.setDelegate(delegate);
    app.setActivationPolicy(ActivationPolicy::regular);
    app.run();
    return 0;
}

} // namespace harbrook
