#include "platform/cocoa/Application.h"

#include "platform/cocoa/ApplicationDelegate.h"
#include "platform/cocoa/Drawing.h"
#include "platform/cocoa/Menus.h"
#include "platform/cocoa/Window.h"

#include <csignal>

namespace harbrook::cocoa {

namespace {

/// Has the signal end the application the normal way, for as long as the source lives.
dispatch_source_t terminateOnSignal(int number) {
    // A handler, if an idle one, keeps the signal from ending the process; a child does not inherit it, as it
    // would the signal's being ignored.
    std::signal(number, [](int) {});
    dispatch_source_t const source = dispatch_source_create(
        DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(number), 0, dispatch_get_main_queue());
    dispatch_source_set_event_handler(source, ^{
        [NSApp terminate:nil];
    });
    dispatch_activate(source);
    return source;
}

} // namespace

void Application::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
    delegate_ = [[HarbrookApplicationDelegate alloc] initWithDelegate:std::move(delegate)];
    application_.delegate = delegate_;
}

void Application::setActivationPolicy(ActivationPolicy policy) {
    [application_ setActivationPolicy:static_cast<NSApplicationActivationPolicy>(policy)];
}

void Application::run() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        terminationSignals_.push_back(terminateOnSignal(number));
    // With tabs the View menu would get commands of the platform's.
    NSWindow.allowsAutomaticWindowTabbing = NO;
    // Without it the system would stretch the intervals of timers while no window shows.
    activity_ =
        [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                     reason:@"The menu bar shows which projects run."];
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
