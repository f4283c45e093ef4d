#include "platform/recording/Window.h"

#include "platform/recording/Format.h"

#include <algorithm>

namespace harbrook::recording {

namespace {

constexpr Size screenSize = {1920, 1080};

Point centred(Size size) {
    return {(screenSize.width - size.width) / 2, (screenSize.height - size.height) / 2};
}

} // namespace

Window::Window(
    WorldPtr world, NotificationCenter& center, Rect contentRect, std::uint32_t styleMask,
    const TitlebarLayout& layout)
    : world_(std::move(world)),
      center_(center),
      layout_(layout),
      frame_(contentRect),
      styleMask_(styleMask),
      frameView_(std::make_shared<View>(world_, center, "windowFrame")),
      container_(std::make_shared<View>(world_, center, "titlebarContainer")),
      titlebar_(std::make_shared<View>(world_, center, "titlebar")) {
    frameView_->adopt(container_);
    container_->adopt(titlebar_);
    titlebar_->setFillsSuperview(layout.fillsContainer);
    constexpr std::array names = {"closeButton", "miniaturizeButton", "zoomButton"};
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        if (!layout.has[i]) continue;
        buttons_[i] = std::make_shared<View>(world_, center, names[i]);
        titlebar_->adopt(buttons_[i]);
    }
    layOutTitlebar();
}

void Window::note(const std::string& operation) {
    world_->noteOnMain("window " + operation);
    refuseIf(released_, "the window was released when it was closed: " + operation);
}

void Window::setTitle(const std::string& title) {
    note("setTitle: " + inQuotes(title));
    title_ = title;
    layOutTitlebar();
}

void Window::setTitleVisibility(TitleVisibility visibility) {
    note(
        std::string("setTitleVisibility: ") + (visibility == TitleVisibility::hidden ? "hidden" : "visible"));
}

void Window::setTitlebarAppearsTransparent(bool flag) {
    note("setTitlebarAppearsTransparent: " + format(flag));
}

void Window::setTitlebarSeparatorStyle(TitlebarSeparatorStyle style) {
    note(
        std::string("setTitlebarSeparatorStyle: ") +
        (style == TitlebarSeparatorStyle::none ? "none" : "automatic"));
}

void Window::setBackgroundColor(const Color& color) {
    note("setBackgroundColor: " + format(color));
    backgroundColor_ = color;
}

void Window::setMinSize(Size size) {
    note("setMinSize: " + format(size));
    minSize_ = size;
}

void Window::setContentView(std::shared_ptr<harbrook::View> view) {
    const auto own = std::dynamic_pointer_cast<View>(view);
    refuseIf(!own, "window setContentView: a view of another platform");
    note("setContentView: " + own->name());
    if (contentView_) contentView_->removeFromSuperview();
    contentView_ = own;
    own->setFillsSuperview(true);
    frameView_->layOut({{0, 0}, frame_.size});
    frameView_->adopt(own);
}

void Window::setReleasedWhenClosed(bool flag) {
    note("setReleasedWhenClosed: " + format(flag));
    releasedWhenClosed_ = flag;
}

void Window::center() {
    note("center");
    frame_.origin = centred(frame_.size);
}

void Window::setFrameAutosaveName(const std::string& name) {
    note("setFrameAutosaveName: " + inQuotes(name));
    if (!savedFrame_) return;
    frame_.origin = savedFrame_->origin;
    simulateResize(savedFrame_->size);
}

void Window::makeKeyAndOrderFront() {
    note("makeKeyAndOrderFront");
    const bool becomesKey = !std::exchange(visible_, true);
    if (becomesKey) simulateBecomeKey();
}

void Window::zoom() {
    note("zoom");
    if (ownFrame_) {
        unfillScreen();
    } else {
        fillScreen();
    }
}

void Window::performWindowDragWithEvent(const harbrook::Event& event) {
    note("performWindowDragWithEvent: type " + std::to_string(static_cast<int>(event.type())));
    dragEvent_ = &event;
}

std::shared_ptr<harbrook::View> Window::standardWindowButton(WindowButton button) {
    return this->button(button);
}

const std::shared_ptr<View>& Window::button(WindowButton which) const {
    return buttons_.at(static_cast<std::size_t>(which));
}

void Window::simulateClose() {
    visible_ = false;
    released_ = releasedWhenClosed_;
}

void Window::simulateResize(Size size) {
    frame_.size = {std::max(size.width, minSize_.width), std::max(size.height, minSize_.height)};
    frameView_->layOut({{0, 0}, frame_.size});
    post(NotificationName::NSWindowDidResizeNotification);
}

void Window::simulateEnterFullScreen() {
    center_.post(
        NotificationName::NSWindowWillEnterFullScreenNotification, static_cast<harbrook::Window*>(this));
    styleMask_ |= NSWindowStyleMaskFullScreen;
    fillScreen();
}

void Window::simulateExitFullScreen() {
    styleMask_ &= ~static_cast<std::uint32_t>(NSWindowStyleMaskFullScreen);
    unfillScreen();
    post(NotificationName::NSWindowDidExitFullScreenNotification);
}

void Window::fillScreen() {
    ownFrame_ = frame_;
    frame_.origin = {0, 0};
    simulateResize(screenSize);
}

void Window::unfillScreen() {
    if (!ownFrame_) return;
    frame_.origin = ownFrame_->origin;
    simulateResize(std::exchange(ownFrame_, {})->size);
}

void Window::layOutTitlebar() {
    container_->layOut({{0, frame_.size.height - layout_.height}, {frame_.size.width, layout_.height}});
    if (!layout_.fillsContainer) titlebar_->layOut({{0, 0}, {frame_.size.width, layout_.height}});
    double x = layout_.buttonX;
    for (const auto& button : buttons_) {
        if (button) button->layOut({{x, layout_.buttonY}, layout_.button});
        x += layout_.pitch;
    }
}

void Window::post(NotificationName name) {
    layOutTitlebar();
    center_.post(name, static_cast<harbrook::Window*>(this));
}

} // namespace harbrook::recording
