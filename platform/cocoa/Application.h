#pragma once

#include "platform/Application.h"
#include "platform/cocoa/Frameworks.h"

#include <vector>

@class HarbrookApplicationDelegate;

namespace harbrook::cocoa {

class Application final : public harbrook::Application {
public:
    void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void setCreatesNewApplicationInstance(bool /*flag*/) override {}
    void run() override;
    void activateIgnoringOtherApps(bool flag) override;
    void setMainMenu(const Menu& menu) override;
    void orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) override;
    void terminate() override;
    std::shared_ptr<const Event> currentEvent() override;

private:
    NSApplication* application_ = [NSApplication sharedApplication];
    // The application holds its delegate weakly.
    HarbrookApplicationDelegate* delegate_ = nil;
    std::vector<dispatch_source_t> terminationSignals_;
    // Lasts for as long as somebody holds it.
    id activity_ = nil;
};

} // namespace harbrook::cocoa
