#include "platform/cocoa/Window.h"

#include "platform/cocoa/Conversions.h"
#include "platform/cocoa/Drawing.h"
#include "platform/cocoa/View.h"

namespace harbrook::cocoa {

NSWindow* Window::nativeOf(harbrook::Window& window) {
    return dynamic_cast<Window&>(window).window_;
}

void Window::setTitle(const std::string& title) {
    window_.title = toNSString(title);
}

void Window::setTitleVisibility(TitleVisibility visibility) {
    window_.titleVisibility = static_cast<NSWindowTitleVisibility>(visibility);
}

void Window::setTitlebarAppearsTransparent(bool flag) {
    window_.titlebarAppearsTransparent = flag;
}

void Window::setTitlebarSeparatorStyle(TitlebarSeparatorStyle style) {
    window_.titlebarSeparatorStyle = static_cast<NSTitlebarSeparatorStyle>(style);
}

void Window::setBackgroundColor(const Color& color) {
    window_.backgroundColor = toNSColor(color);
}

void Window::setMinSize(Size size) {
    window_.minSize = NSMakeSize(size.width, size.height);
}

void Window::setContentView(std::shared_ptr<harbrook::View> view) {
    window_.contentView = View::nativeOf(*view);
}

void Window::setReleasedWhenClosed(bool flag) {
    window_.releasedWhenClosed = flag;
}

void Window::center() {
    [window_ center];
}

void Window::setFrameAutosaveName(const std::string& name) {
    [window_ setFrameAutosaveName:toNSString(name)];
}

void Window::makeKeyAndOrderFront() {
    [window_ makeKeyAndOrderFront:nil];
}

void Window::zoom() {
    [window_ zoom:nil];
}

void Window::performWindowDragWithEvent(const harbrook::Event& event) {
    [window_ performWindowDragWithEvent:dynamic_cast<const Event&>(event).native()];
}

std::uint32_t Window::styleMask() {
    return static_cast<std::uint32_t>(window_.styleMask);
}

Rect Window::frame() {
    return fromNSRect(window_.frame);
}

std::shared_ptr<harbrook::View> Window::standardWindowButton(WindowButton button) {
    return View::over([window_ standardWindowButton:static_cast<NSWindowButton>(button)]);
}

std::int64_t Window::windowNumber() {
    return window_.windowNumber;
}

EventType Event::type() const {
    return event_.type == NSEventTypeLeftMouseDown ? EventType::leftMouseDown : EventType::other;
}

} // namespace harbrook::cocoa
