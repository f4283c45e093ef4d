#include "platform/cocoa/Application.h"

#include "platform/cocoa/ApplicationDelegate.h"
#include "platform/cocoa/Drawing.h"
#include "platform/cocoa/Menus.h"
#include "platform/cocoa/Window.h"

namespace harbrook::cocoa {

void Application::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
    delegate_ = [[HarbrookApplicationDelegate alloc] initWithDelegate:std::move(delegate)];
    application_.delegate = delegate_;
}

void Application::setActivationPolicy(ActivationPolicy policy) {
    [application_ setActivationPolicy:static_cast<NSApplicationActivationPolicy>(policy)];
}

void Application::run() {
    [application_ run];
}

void Application::activateIgnoringOtherApps(bool flag) {
    [application_ activateIgnoringOtherApps:flag];
}

void Application::setMainMenu(const Menu& menu) {
    application_.mainMenu = toNSMenu(menu);
}

void Application::orderFrontStandardAboutPanelWithOptions(const AboutPanelOptions& options) {
    NSMutableDictionary* const dictionary = [NSMutableDictionary dictionary];
    if (options.credits) dictionary[NSAboutPanelOptionCredits] = toNSAttributedString(*options.credits);
    [application_ orderFrontStandardAboutPanelWithOptions:dictionary];
}

void Application::terminate() {
    [application_ terminate:nil];
}

std::shared_ptr<const harbrook::Event> Application::currentEvent() {
    NSEvent* const event = application_.currentEvent;
    return event ? std::make_shared<Event>(event) : nullptr;
}

} // namespace harbrook::cocoa
