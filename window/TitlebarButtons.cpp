#include "app/AppDelegate.h"
#include "app/Invariant.h"
#include "window/TitlebarLayout.h"

#include <array>

namespace harbrook {

namespace {

constexpr std::array buttons = {WindowButton::close, WindowButton::miniaturize, WindowButton::zoom};
constexpr double buttonPitch = 20;

} // namespace

void AppDelegate::placeTrafficLights() {
    assertMainThread();
    // Moving a view reports a changed frame from inside the move, which leads back here.
    if (!window || placingLights) return;
    if (window->styleMask() & NSWindowStyleMaskFullScreen) return;
    const auto close = window->standardWindowButton(WindowButton::close);
    const auto titlebar = close ? close->superview() : nullptr;
    const auto container = titlebar ? titlebar->superview() : nullptr;
    if (!container) return;

    placingLights = true;
    const double windowHeight = window->frame().size.height;
    if (const auto frame = titlebarContainerFrame(container->frame(), windowHeight, lightsRow)) {
        container->setFrame(*frame);
    }
    double x = lightsX;
    for (const auto which : buttons) {
        if (const auto button = window->standardWindowButton(which)) {
            const auto frame = button->frame();
            const auto origin =
                titlebarButtonOrigin(titlebar->frame().size.height, frame.size.height, x, lightsCentre);
            if (frame.origin != origin) button->setFrameOrigin(origin);
        }
        x += buttonPitch;
    }
    placingLights = false;
}

void AppDelegate::watchTrafficLights() {
    if (!window) return;
    for (const auto which : buttons)
        watchView(window->standardWindowButton(which));
    const auto close = window->standardWindowButton(WindowButton::close);
    const auto titlebar = close ? close->superview() : nullptr;
    watchView(titlebar);
    watchView(titlebar ? titlebar->superview() : nullptr);

    using enum NotificationName;
    for (const auto name :
         {NSWindowDidResizeNotification, NSWindowDidEndLiveResizeNotification,
          NSWindowDidBecomeKeyNotification, NSWindowDidResignKeyNotification,
          NSWindowDidDeminiaturizeNotification, NSWindowDidChangeScreenNotification}) {
        watchWindow(name, &AppDelegate::placeTrafficLights);
    }
    watchWindow(NSWindowWillEnterFullScreenNotification, &AppDelegate::willEnterFullScreen);
    watchWindow(NSWindowDidExitFullScreenNotification, &AppDelegate::didExitFullScreen);
    placeTrafficLights();
}

void AppDelegate::watchView(const std::shared_ptr<View>& view) {
    if (!view) return;
    view->setPostsFrameChangedNotifications(true);
    // Without a queue: the button is back in its place before the change that moved it can be drawn.
    lightObservers.push_back(platform_->notificationCenter().addObserverForName(
        NotificationName::NSViewFrameDidChangeNotification, view, ObserverQueue::none,
        whileAlive(&AppDelegate::placeTrafficLights)));
}

void AppDelegate::watchWindow(NotificationName name, void (AppDelegate::*method)()) {
    lightObservers.push_back(platform_->notificationCenter().addObserverForName(
        name, window, ObserverQueue::mainQueue, whileAlive(method)));
}

void AppDelegate::willEnterFullScreen() {
    required(webView).evaluateJavaScript("document.documentElement.classList.add('fullscreen')");
}

void AppDelegate::didExitFullScreen() {
    required(webView).evaluateJavaScript("document.documentElement.classList.remove('fullscreen')");
    placeTrafficLights();
}

} // namespace harbrook
